// Geocoding answers: any body decodes to places or to nothing; every place has a position on the globe.
#include "FuzzSupport.h"
#include "weather/OpenWeatherGeocoder.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const auto places = OpenWeatherGeocoder::decode(fuzzBytes(data, size));
    if (places) {
        for (const auto &[position, placemark] : *places) {
            FUZZ_REQUIRE(position.isValid());
            (void)placemark;
        }
    }
    return 0;
}
