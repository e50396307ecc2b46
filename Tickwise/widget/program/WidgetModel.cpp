#include "widget/program/WidgetModel.h"

#include "support/LogCategories.h"
#include "widget/program/WidgetSize.h"

#include <QFileInfo>

#include <algorithm>

namespace tickwise {

namespace {

Q_LOGGING_CATEGORY(lcWidget, "com.pelmo.tickwise.Widget")

} // namespace

WidgetModel::WidgetModel(WidgetSnapshotStore store, CoinLookup lookup, QObject *parent)
    : QObject(parent)
    , m_store(std::move(store))
    , m_lookup(std::move(lookup))
{
}

void WidgetModel::reload()
{
    const Result<WidgetSnapshot> snapshot = m_store.read();
    if (!snapshot)
        return noteFailure(snapshot.error());
    m_failure.clear();
    show(*snapshot);
}

void WidgetModel::show(const WidgetSnapshot &snapshot)
{
    if (m_watchlist != snapshot.watchlist) {
        m_watchlist = snapshot.watchlist;
        m_coins = m_lookup(m_watchlist);
    }
    WidgetEntryContent content = widgetEntryContent(snapshot, indexById(m_coins));
    const auto most = static_cast<std::size_t>(rowCount(WidgetSize::large));
    content.rows.resize(std::min(content.rows.size(), most));
    m_content = content;
}

void WidgetModel::noteFailure(const Error &error)
{
    const std::optional<QString> path = m_store.path();
    const QString failure = path && !QFileInfo::exists(*path) ? QString() : description(error);
    if (std::exchange(m_failure, failure) != failure && !failure.isEmpty())
        qCWarning(lcWidget, "Widget snapshot not read: %s", qUtf8Printable(failure));
}

} // namespace tickwise
