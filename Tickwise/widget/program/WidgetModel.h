#pragma once

#include "widget/WidgetEntryContent.h"
#include "widget/WidgetSnapshotStore.h"

#include <QObject>
#include <QProperty>

#include <functional>

namespace tickwise {

/// Finds the records of coins by id; unknown ids are left out.
using CoinLookup = std::function<std::vector<CoinMetadata>(const std::vector<QString> &ids)>;

/// What the widget shows: the content of the snapshot file and nothing else. A file that is missing or cannot be used
/// leaves the last content; before the first one that can, the list is empty.
class WidgetModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(tickwise::WidgetEntryContent content READ content NOTIFY contentChanged BINDABLE bindableContent)

public:
    WidgetModel(WidgetSnapshotStore store, CoinLookup lookup, QObject *parent = nullptr);

    WidgetEntryContent content() const { return m_content; }
    QBindable<WidgetEntryContent> bindableContent() { return &m_content; }

    /// Reads the file again. A file that cannot be used is one log line, again only when the reason changes.
    void reload();

Q_SIGNALS:
    void contentChanged();

private:
    void show(const WidgetSnapshot &snapshot);
    void noteFailure(const Error &error);

    WidgetSnapshotStore m_store;
    CoinLookup m_lookup;
    std::vector<QString> m_watchlist; ///< the ids that `m_coins` was looked up for
    std::vector<CoinMetadata> m_coins;
    QString m_failure;
    Q_OBJECT_BINDABLE_PROPERTY(WidgetModel, WidgetEntryContent, m_content, &WidgetModel::contentChanged)
};

} // namespace tickwise
