#pragma once

#include "pipeline/Menu.h"

#include <QPoint>

#include <memory>

class QMenu;

namespace tickwise {

/// The menu value as a widget. The actions run from the event loop, after the menu has closed.
std::unique_ptr<QMenu> localMenu(const Menu &menu);

/// Shows the menu at a position on the screen; it is gone once it closes.
void showLocalMenu(const Menu &menu, QPoint position);

} // namespace tickwise
