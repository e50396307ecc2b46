#include "widget/WidgetSnapshotStore.h"

#include "support/files/WholeFile.h"
#include "support/json/Json.h"

namespace tickwise {

std::optional<QString> WidgetSnapshotStore::path() const
{
    if (!directory)
        return std::nullopt;
    return *directory + QStringLiteral("/widget-snapshot.json");
}

Result<void> WidgetSnapshotStore::write(const WidgetSnapshot &snapshot) const
{
    const std::optional<QString> file = path();
    if (!file)
        return {};
    // Nothing waits for the disk: this runs on the main thread at every poll. A crash of the machine may lose the
    // newest snapshot or leave an empty one, which the reader refuses and the next poll replaces.
    return encodeWidgetSnapshot(snapshot).and_then(
        [&](const QByteArray &bytes) { return writeWholeFile(*file, bytes, Durability::unsynced); });
}

Result<WidgetSnapshot> WidgetSnapshotStore::read() const
{
    if (!directory)
        return failure(FileError{QStringLiteral("widget snapshot"), QStringLiteral("there is no container")});
    return readWholeFile(*path(), largestJsonDocument).and_then(decodeWidgetSnapshot);
}

} // namespace tickwise
