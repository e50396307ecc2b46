#include "platform/statusitem/HostTraits.h"

#include "platform/statusitem/WaybarConfig.h"

#include <algorithm>
#include <iterator>

namespace tickwise {

namespace {

using Host = StatusItemHost;
using Presentation = StatusItemPresentation;
using Source = AppearanceSource;

constexpr auto byName = ItemAnnouncement::byName;
// GNOME's extension watches a name that it is given. The first owner change that it hears of makes it forget the
// properties that it has just read, and it may then drop the item.
constexpr auto byConnection = ItemAnnouncement::byConnection;

constexpr int usualHeights[] = {16, 22, 24, 32, 48, 64};
constexpr int mateHeights[] = {16, 18, 20, 22, 24, 26, 27, 28, 30, 32, 36, 40, 48};
constexpr int swaybarHeights[] = {16, 18, 20, 22, 24, 32, 48};
constexpr int cinnamonHeights[] = {22};
// waybar takes the largest entry and scales it, so there must be one only, of the configured height.
constexpr std::span<const int> configured;

// LXQt's tray tells no colors, and most of its themes have a dark panel whatever the windows look like.
constexpr HostTraits table[] = {
    {Host::none, Presentation::xembedSquare, Presentation::nothing, byName, false, Source::trayThenSchemeThenPalette,
     usualHeights, false},
    {Host::unknown, Presentation::squareSni, Presentation::squareSni, byName, false, Source::schemeThenPalette,
     usualHeights, false},
    {Host::waybar, Presentation::wideSni, Presentation::wideSni, byName, false, Source::schemeThenDark, configured,
     false, LineBreak::newline},
    {Host::mate, Presentation::wideSni, Presentation::wideSni, byName, false, Source::trayThenSchemeThenPalette,
     mateHeights, false},
    {Host::cinnamon, Presentation::wideSni, Presentation::wideSni, byName, false, Source::schemeThenDark,
     cinnamonHeights, false},
    {Host::xfce, Presentation::xembed, Presentation::squareSni, byName, true, Source::trayThenSchemeThenPalette,
     usualHeights, false},
    {Host::gnome, Presentation::sniWithLabel, Presentation::sniWithLabel, byConnection, true, Source::alwaysDark,
     usualHeights, false},
    {Host::ayatana, Presentation::sniWithLabel, Presentation::sniWithLabel, byName, false,
     Source::trayThenSchemeThenPalette, usualHeights, false},
    {Host::plasma, Presentation::squareSni, Presentation::squareSni, byName, true, Source::schemeThenPalette,
     usualHeights, false},
    {Host::lxqt, Presentation::squareSni, Presentation::squareSni, byName, true, Source::trayThenDark, usualHeights,
     false},
    {Host::swaybar, Presentation::squareSni, Presentation::squareSni, byName, true, Source::alwaysDark, swaybarHeights,
     true},
};

// Compositors that come without a bar; several give the name of the library that they are built on.
constexpr QLatin1StringView bareCompositors[] = {
    QLatin1StringView("sway"),  QLatin1StringView("wlroots"), QLatin1StringView("Hyprland"), QLatin1StringView("river"),
    QLatin1StringView("labwc"), QLatin1StringView("Wayfire"), QLatin1StringView("niri"),     QLatin1StringView("dwl"),
};

PanelAppearance firstKnown(std::initializer_list<PanelAppearance> sources)
{
    const auto *const known = std::ranges::find_if(
        sources, [](PanelAppearance appearance) { return appearance != PanelAppearance::unknown; });
    return known == sources.end() ? PanelAppearance::unknown : *known;
}

} // namespace

const HostTraits &hostTraits(StatusItemHost host)
{
    return *std::ranges::find(table, host, &HostTraits::host);
}

StatusItemPresentation presentationFor(StatusItemHost host, bool hasTray)
{
    const HostTraits &traits = hostTraits(host);
    return hasTray ? traits.withTray : traits.withoutTray;
}

StatusItemAvailability missingHost(const QString &currentDesktop)
{
    const QStringList names = currentDesktop.split(u':', Qt::SkipEmptyParts);
    if (names.contains(QLatin1StringView("GNOME"), Qt::CaseInsensitive))
        return StatusItemAvailability::needsExtension;
    const bool isBare = std::ranges::any_of(
        bareCompositors, [&](QLatin1StringView name) { return names.contains(name, Qt::CaseInsensitive); });
    return isBare ? StatusItemAvailability::needsTrayBar : StatusItemAvailability::needsPanel;
}

ItemFormat itemFormatFor(StatusItemHost host, const WatcherProcess &process)
{
    const HostTraits &traits = hostTraits(host);
    const QList<int> heights = traits.pixmapHeights.empty()
                                   ? QList<int>{waybarIconSize(process)}
                                   : QList<int>(traits.pixmapHeights.begin(), traits.pixmapHeights.end());
    return {heights, traits.premultiplied, traits.toolTipBreak};
}

PanelAppearance panelAppearance(StatusItemHost host, PanelAppearance trayColors, PanelAppearance colorScheme,
                                PanelAppearance palette)
{
    switch (hostTraits(host).appearance) {
    case AppearanceSource::alwaysDark:
        return PanelAppearance::dark;
    case AppearanceSource::trayThenDark:
        return firstKnown({trayColors, PanelAppearance::dark});
    case AppearanceSource::schemeThenDark:
        return firstKnown({colorScheme, PanelAppearance::dark});
    case AppearanceSource::trayThenSchemeThenPalette:
        return firstKnown({trayColors, colorScheme, palette});
    case AppearanceSource::schemeThenPalette:
        break;
    }
    return firstKnown({colorScheme, palette});
}

} // namespace tickwise
