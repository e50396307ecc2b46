#include "settings/AppSettingsCoding.h"
#include "support/json/Json.h"
#include "support/json/JsonRepair.h"

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

/// A repair keeps the length, and leaves alone what needs none.
void checkRepair(const QByteArray &document)
{
    const QByteArray repaired = repairedJson(document);
    require(repaired.size() == document.size());
    if (parseJson(document))
        require(repaired == document);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray document(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    checkRepair(document);
    const Result<AppSettings> settings = decodeSettings(document);
    if (settings) {
        require(settings->desktopOverlayBackgroundOpacity >= 0 && settings->desktopOverlayBackgroundOpacity <= 1);
        checkRoundTrip(*settings);
    }
    return 0;
}
