#include "ui/updates/appcast/AppcastParser.h"
#include "ui/updates/appcast/ReleaseNotesText.h"
#include "ui/updates/appcast/UpdateSelection.h"
#include "ui/updates/appcast/VersionComparison.h"

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

void checkItem(const AppcastItem &item)
{
    require(isVersion(item.version));
    require(item.url.scheme() == QStringLiteral("https") && !item.url.host().isEmpty());
    require(item.length >= 0);
    require(item.shortVersion.toUcs4().size() <= 64);
    require(item.releaseNotes.size() <= maximumReleaseNotesLength);
    require(compareVersions(item.version, item.version) == 0);
}

void checkOrder(const AppcastItem &left, const AppcastItem &right)
{
    require(compareVersions(left.version, right.version) == (0 <=> compareVersions(right.version, left.version)));
}

void checkSelection(const std::vector<AppcastItem> &items)
{
    const QString running = QStringLiteral("1.0");
    const UpdateSelection selection = selectUpdate(items, {running, QStringLiteral("12"), {}, false});
    require(selection.item.has_value() == (selection.outcome == UpdateOutcome::found));
    require(!selection.item || compareVersions(selection.item->version, running) > 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray document(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    require(releaseNotesText(QString::fromUtf8(document)).size() <= 2 * document.size());
    const Result<std::vector<AppcastItem>> items = parseAppcast(document);
    if (!items)
        return 0;
    require(items->size() <= maximumAppcastItems);
    for (const AppcastItem &item : *items) {
        checkItem(item);
        checkOrder(item, items->front());
    }
    checkSelection(*items);
    return 0;
}
