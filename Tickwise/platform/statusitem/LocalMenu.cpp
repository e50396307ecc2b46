#include "platform/statusitem/LocalMenu.h"

#include "platform/statusitem/DBusMenuLayout.h"
#include "support/drawing/TintedSvg.h"

#include <QActionGroup>
#include <QGuiApplication>
#include <QMenu>
#include <QPalette>

namespace tickwise {

namespace {

constexpr int localIconPixels = 32;

QIcon symbolIcon(const QString &name)
{
    const QImage image = tintedSymbol(name, localIconPixels, QGuiApplication::palette().color(QPalette::WindowText));
    return image.isNull() ? QIcon() : QIcon(QPixmap::fromImage(image));
}

QString escapedText(const QString &text)
{
    return QString(text).replace(u'&', QStringLiteral("&&"));
}

void fill(QMenu &menu, const Menu &entries);

void addAction(QMenu &menu, const MenuEntry &entry, QActionGroup *alternatives)
{
    QAction *action = menu.addAction(symbolIcon(entry.iconName), escapedText(entry.text));
    action->setEnabled(entry.enabled);
    action->setIconVisibleInMenu(true);
    if (entry.checked) {
        action->setCheckable(true);
        action->setActionGroup(alternatives);
        action->setChecked(*entry.checked);
    }
    if (entry.activate) {
        QObject::connect(action, &QAction::triggered, qGuiApp, [activate = entry.activate](bool) {
            QMetaObject::invokeMethod(qGuiApp, activate, Qt::QueuedConnection);
        });
    }
}

void addEntry(QMenu &menu, const MenuEntry &entry, QActionGroup *alternatives)
{
    if (entry.kind == MenuEntry::Kind::separator) {
        menu.addSeparator();
    } else if (entry.kind == MenuEntry::Kind::submenu) {
        QMenu *child = menu.addMenu(symbolIcon(entry.iconName), escapedText(entry.text));
        child->setEnabled(entry.enabled);
        fill(*child, entry.children);
    } else {
        addAction(menu, entry, alternatives);
    }
}

void fill(QMenu &menu, const Menu &entries)
{
    QActionGroup *alternatives = areAlternatives(entries) ? new QActionGroup(&menu) : nullptr;
    for (const MenuEntry &entry : entries)
        addEntry(menu, entry, alternatives);
}

} // namespace

std::unique_ptr<QMenu> localMenu(const Menu &menu)
{
    auto widget = std::make_unique<QMenu>();
    fill(*widget, menu);
    return widget;
}

void showLocalMenu(const Menu &menu, QPoint position)
{
    QMenu *widget = localMenu(menu).release();
    widget->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(widget, &QMenu::aboutToHide, widget, &QObject::deleteLater);
    widget->popup(position);
}

} // namespace tickwise
