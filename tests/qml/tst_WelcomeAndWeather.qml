import QtQuick
import QtTest
import Telverra

// The welcome screen's greeting and waiting wave, the weather card, its popover and the clock.
TestCase {
    id: testCase
    name: "WelcomeAndWeather"
    when: windowShown
    visible: true // the screens are drawn inside it
    width: 800
    height: 600

    function make(file, properties) {
        const item = createTemporaryObject(Qt.createComponent("qrc:/qt/qml/Telverra/" + file), testCase, properties)
        verify(item)
        return item
    }

    // The greeting for the hour the screen is given (the hours' boundaries are the welcome service's).
    function test_greetingForTheGivenHour() {
        for (const [hour, text] of [[4, "Good night !!!"], [12, "Good afternoon !!!"]]) {
            const view = make("welcome/WelcomeView.qml", { viewModel: viewModel, now: new Date(2026, 10, 22, hour, 0) })
            compare(findChild(view, "greeting").text, text)
        }
    }

    function test_waitingWave() {
        // No quote service is configured here, so the indicator keeps waving.
        const view = make("welcome/WelcomeView.qml", { viewModel: viewModel })
        compare([findChild(view, "indicator").visible, findChild(view, "quote").visible], [true, false])
        const seen = [view.count]
        for (let tick = 0; tick < 4; ++tick) {
            const previous = view.count
            tryVerify(() => view.count !== previous)
            seen.push(view.count)
        }
        // 0, 1, 2, 3, 0 in turn (from wherever it started): each step is +1 or 3 → 0.
        for (let i = 1; i < seen.length; ++i) compare(seen[i], (seen[i - 1] + 1) % 4)
        tryVerify(() => view.count === 2)
        const marks = [findChild(view, "mark1"), findChild(view, "mark2"), findChild(view, "mark3")]
        tryVerify(() => marks[1].y < marks[0].y && marks[1].y < marks[2].y)
    }

    function test_weatherCardAndPopover() {
        tryVerify(() => viewModel.weatherInfo !== undefined && viewModel.weatherInfo !== null)
        const card = make("weather/WeatherCardView.qml", { viewModel: viewModel })
        const temperature = findChild(card, "weatherTemp")
        compare([temperature.text, findChild(card, "weatherIcon").name, temperature.font.pixelSize], ["21.0º", "sun.max.fill", 14])
        card.isLarge = true
        compare(temperature.font.pixelSize, 60)
        card.showDailyWeatherPopOver = true
        const popover = findChild(card, "dailyWeatherPopOver")
        tryCompare(popover, "opened", true)
        compare(popover.vm.rows.length, 4) // the served forecast's days, as the weather service presents them
        // The fixture's days are in 2025, all past: none of them is today.
        verify(!popover.vm.rows.some(row => row.dayLabel === "Today"))
        const attribution = findChild(popover, "attribution")
        verify(attribution.text.startsWith(
            'free weather data provided by <a href="https://openweathermap.org">Open Weather Map</a>. Last updated on '))
        compare(attribution.linkColor, popover.palette.link)
    }

    function test_clockTicks() {
        const clock = make("weather/DigitalClockView.qml", {})
        const first = clock.date
        tryVerify(() => clock.date.getTime() !== first.getTime())
        compare(findChild(clock, "clockTime").text, Qt.formatTime(clock.date, "HH:mm"))
    }
}
