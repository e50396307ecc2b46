// Decoding of settings documents of the largest size that hold nothing but one kind of value, as no version wrote them:
// how long such a file delays the start.
#include "settings/AppSettingsCoding.h"
#include "support/json/Json.h"

#include <benchmark/benchmark.h>

using namespace tickwise;

namespace {

QByteArray filledWith(const char *value)
{
    const QByteArray start = R"({"addedCoins":[)";
    const QByteArray element = QByteArray(value) + ',';
    const qsizetype count = (largestJsonDocument - start.size() - element.size() - 2) / element.size();
    return start + element.repeated(count) + value + "]}";
}

void decode(benchmark::State &state, const char *value)
{
    const QByteArray document = filledWith(value);
    for (auto _ : state) {
        if (!decodeSettings(document)) {
            state.SkipWithError("the document does not decode");
            return;
        }
    }
}

BENCHMARK_CAPTURE(decode, beyond_any_double, "1e999")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(decode, large_number, "1e99")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(decode, digit, "1")->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
