#include "settings/AppSettingsCoding.h"

#include <cstdint>
#include <cstdlib>

using namespace tickwise;

namespace {

/// Ends the run where a rule is broken.
void require(bool holds)
{
    if (!holds)
        std::abort();
}

void checkRoundTrip(const AppSettings &settings)
{
    const Result<QByteArray> document = encodeSettings(settings);
    require(document.has_value());
    const Result<AppSettings> again = decodeSettings(*document);
    require(again.has_value());
    require(*again == settings);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray document(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const Result<AppSettings> settings = decodeSettings(document);
    if (settings) {
        require(settings->desktopOverlayBackgroundOpacity >= 0 && settings->desktopOverlayBackgroundOpacity <= 1);
        checkRoundTrip(*settings);
    }
    return 0;
}
