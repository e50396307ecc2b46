#pragma once

#include <QString>

#include <functional>
#include <optional>
#include <vector>

namespace tickwise {

/// One entry of a menu, as a value; a menu is a list of entries.
struct MenuEntry
{
    enum class Kind
    {
        action,
        separator,
        submenu
    };

    Kind kind = Kind::action;
    QString text;     ///< plain text: no mnemonic marks
    QString iconName; ///< name of a symbol under :/symbols, or empty
    bool enabled = true;
    std::optional<bool> checked;     ///< none: not checkable
    std::vector<MenuEntry> children; ///< for a submenu
    std::function<void()> activate;  ///< for an action
};

using Menu = std::vector<MenuEntry>;

} // namespace tickwise
