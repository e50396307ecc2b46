#include "settings/AppSettingsCoding.h"
#include "settings/SettingsParsing.h"
#include "support/json/Json.h"
#include "support/json/JsonRepair.h"

#include <algorithm>
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

/// Whether what was left out of a value is nothing that a record reads.
bool holdsAllOf(const JsonValue &whole, const JsonValue &kept)
{
    if (whole.is_object() && kept.is_object()) {
        const auto sameMember = [&](const auto &member) { return holdsAllOf(member.second, kept.at(member.first)); };
        const auto &members = whole.get_ref<const JsonValue::object_t &>();
        return members.size() == kept.size() && std::ranges::all_of(members, sameMember);
    }
    if (whole.is_array() && kept.is_array()) {
        const bool isWhole = whole.size() == kept.size();
        std::size_t next = 0;
        for (const JsonValue &element : whole) {
            if (!isWhole && !element.is_object())
                continue;
            if (next == kept.size() || !holdsAllOf(element, kept.at(next++)))
                return false;
        }
        return next == kept.size();
    }
    return whole.is_structured() || whole == kept;
}

/// The parser of settings accepts what the other one accepts, and reads the same.
void checkParsing(const QByteArray &document)
{
    const Result<JsonValue> whole = parseJson(document, JsonFaults::repair);
    const Result<JsonValue> kept = parseSettings(document);
    require(whole.has_value() == kept.has_value());
    require(!whole || holdsAllOf(*whole, *kept));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray document(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    checkRepair(document);
    checkParsing(document);
    const Result<AppSettings> settings = decodeSettings(document);
    if (settings) {
        require(settings->desktopOverlayBackgroundOpacity >= 0 && settings->desktopOverlayBackgroundOpacity <= 1);
        checkRoundTrip(*settings);
    }
    return 0;
}
