// Shows a status item in the running desktop's panel. Each line of the standard input is its next content, a JSON
// object such as
// {"text": "BTC 67,432", "symbol": "BTC", "price": "67,432", "color": "#2cbd84", "pill": "#2cbd84", "trend": "up"}, or
// {"logo": true}, or the entries of another menu, {"menu": ["One", "Two"]}; "quit" ends the program. Clicks, where the
// item is then, and chosen menu entries are printed, one a line.

#include "platform/statusitem/PanelStatusItem.h"

#include <QApplication>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSocketNotifier>

#include <cstdio>

#include <unistd.h>

using namespace tickwise;

namespace {

void print(const QString &line)
{
    std::puts(qUtf8Printable(line));
    std::fflush(stdout);
}

std::optional<QColor> colorOf(const QJsonValue &value)
{
    return value.isString() ? std::optional(QColor(value.toString())) : std::nullopt;
}

StatusTrend trendOf(const QString &name)
{
    return name == u"up" ? StatusTrend::up : name == u"down" ? StatusTrend::down : StatusTrend::none;
}

StatusItemContent contentOf(const QJsonObject &line)
{
    StatusItemContent content;
    content.logo = line[u"logo"].toBool();
    content.text = line[u"text"].toString();
    content.symbol = line[u"symbol"].toString();
    content.price = line[u"price"].toString();
    content.textColor = colorOf(line[u"color"]);
    content.pillColor = colorOf(line[u"pill"]);
    content.trend = trendOf(line[u"trend"].toString());
    content.title = content.logo ? QStringLiteral("Tickwise") : content.text.trimmed();
    content.toolTipTitle = content.title;
    content.toolTipBody = line[u"toolTip"].toString();
    return content;
}

MenuEntry action(const QString &text, std::optional<bool> checked = {})
{
    MenuEntry entry;
    entry.text = text;
    entry.iconName = checked ? QString() : QStringLiteral("gearshape");
    entry.checked = checked;
    entry.activate = [text] { print(QStringLiteral("menu ") + text); };
    return entry;
}

Menu probeMenu()
{
    MenuEntry change{MenuEntry::Kind::submenu, QStringLiteral("Change coin")};
    change.children = {action(QStringLiteral("BTC - Bitcoin"), true), action(QStringLiteral("ETH - Ethereum"), false)};
    MenuEntry updates = action(QStringLiteral("Check for updates"));
    updates.enabled = false;
    return {change, MenuEntry{MenuEntry::Kind::separator}, action(QStringLiteral("Settings")), updates,
            action(QStringLiteral("Quit"))};
}

/// Another menu from now on.
void changeMenu(PanelStatusItem &item, const QJsonArray &texts)
{
    Menu menu;
    for (const auto text : texts)
        menu.push_back(action(text.toString()));
    item.setMenu([menu] { return menu; });
    print(QStringLiteral("menu changed"));
}

void printClick(const PanelStatusItem &item, std::optional<QPoint> position)
{
    print(position ? QStringLiteral("clicked %1 %2").arg(position->x()).arg(position->y()) : QStringLiteral("clicked"));
    if (const std::optional<QRect> area = item.geometry())
        print(
            QStringLiteral("item at %1 %2 %3 %4").arg(area->x()).arg(area->y()).arg(area->width()).arg(area->height()));
}

/// The complete lines that have come; the end of the input ends the program.
QList<QByteArray> readLines(QByteArray &buffer)
{
    char chunk[4096];
    const ssize_t length = ::read(STDIN_FILENO, chunk, sizeof chunk);
    if (length <= 0)
        QCoreApplication::quit();
    buffer.append(chunk, std::max<ssize_t>(length, 0));
    QList<QByteArray> lines = buffer.split('\n');
    buffer = lines.takeLast();
    return lines;
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    SessionBus bus;
    PanelStatusItem item(bus);
    item.setMenu(probeMenu);
    QObject::connect(&item, &StatusItem::clicked,
                     [&item](std::optional<QPoint> position) { printClick(item, position); });
    QObject::connect(&item, &StatusItem::appearanceChanged, [&item] {
        print(QStringLiteral("appearance ") +
              (item.appearance() == PanelAppearance::dark ? QStringLiteral("dark") : QStringLiteral("light")));
    });
    QByteArray buffer;
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, [&] {
        for (const QByteArray &line : readLines(buffer)) {
            if (line == "quit")
                return QCoreApplication::quit();
            const QJsonObject object = QJsonDocument::fromJson(line).object();
            if (object.contains(u"menu"))
                changeMenu(item, object[u"menu"].toArray());
            else
                item.setContent(contentOf(object));
        }
    });
    print(QStringLiteral("ready"));
    return QApplication::exec();
}
