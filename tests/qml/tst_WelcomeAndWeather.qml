import QtQuick
import QtTest
import Telverra

// The welcome screen's greeting and waiting wave, the weather card, its popover and the clock.
Item {
    id: stage
    width: 800
    height: 600

TestCase {
    id: testCase
    name: "WelcomeAndWeather"
    when: windowShown
    width: 800
    height: 600

    function test_greetingByHour_data() {
        return [
            { tag: "04:00", hour: 4, text: "Good night !!!" },
            { tag: "05:00", hour: 5, text: "Good morning !!!" },
            { tag: "12:00", hour: 12, text: "Good afternoon !!!" },
            { tag: "18:00", hour: 18, text: "Good evening !!!" },
            { tag: "22:00", hour: 22, text: "Good night !!!" }
        ]
    }
    function test_greetingByHour(data) {
        const view = createTemporaryObject(Qt.createComponent("qrc:/qt/qml/Telverra/welcome/WelcomeView.qml"), stage,
                                           { viewModel: viewModel, now: new Date(2026, 10, 22, data.hour, 0) })
        compare(findChild(view, "greeting").text, data.text)
    }

    function test_waitingWave() {
        // No quote service is configured here, so the indicator keeps waving.
        const view = createTemporaryObject(Qt.createComponent("qrc:/qt/qml/Telverra/welcome/WelcomeView.qml"), stage,
                                           { viewModel: viewModel })
        verify(findChild(view, "indicator").visible)
        compare(findChild(view, "quote").visible, false)
        const seen = [view.count]
        for (let tick = 0; tick < 4; ++tick) {
            const previous = view.count
            tryVerify(() => view.count !== previous, 1000)
            seen.push(view.count)
        }
        // 0, 1, 2, 3, 0 in turn (from wherever it started): each step is +1 or 3 → 0, a wave of 2 seconds.
        for (let i = 1; i < seen.length; ++i) compare(seen[i], (seen[i - 1] + 1) % 4)
        tryVerify(() => view.count === 2, 2500)
        const marks = [findChild(view, "mark1"), findChild(view, "mark2"), findChild(view, "mark3")]
        tryVerify(() => marks[1].y < marks[0].y && marks[1].y < marks[2].y)
    }

    function test_weatherCardAndPopover() {
        tryVerify(() => viewModel.weatherInfo !== undefined && viewModel.weatherInfo !== null, 5000)
        const card = createTemporaryObject(Qt.createComponent("qrc:/qt/qml/Telverra/weather/WeatherCardView.qml"), stage,
                                           { viewModel: viewModel })
        compare(findChild(card, "weatherTemp").text, "21.0º")
        compare(findChild(card, "weatherIcon").name, "sun.max.fill")
        compare(findChild(card, "weatherTemp").font.pixelSize, 14)
        card.isLarge = true
        compare(findChild(card, "weatherTemp").font.pixelSize, 60)
        card.showDailyWeatherPopOver = true
        const popover = findChild(card, "dailyWeatherPopOver")
        tryCompare(popover, "opened", true)
        compare(popover.vm.rows.length, 4)
        compare(popover.vm.rows[1].max, "21.9")
        compare(popover.vm.rows[1].min, "15.8")
        verify(popover.vm.attribution.startsWith(
            "free weather data provided by [Open Weather Map](https://openweathermap.org). Last updated on "))
        const attribution = findChild(popover, "attribution")
        verify(attribution.text.startsWith(
            'free weather data provided by <a href="https://openweathermap.org">Open Weather Map</a>. Last updated on '))
        compare(attribution.linkColor, popover.palette.link)
        // The fixture's days are in 2025: none of them is today.
        verify(!popover.vm.rows.some(row => row.dayLabel === "Today"))
    }

    function test_clockTicks() {
        const clock = createTemporaryObject(Qt.createComponent("qrc:/qt/qml/Telverra/weather/DigitalClockView.qml"), stage)
        const first = clock.date
        tryVerify(() => clock.date.getTime() !== first.getTime(), 1500)
        compare(findChild(clock, "clockTime").text, Qt.formatTime(clock.date, "HH:mm"))
    }
}
}
