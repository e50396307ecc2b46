"""A sway whose outputs are windows of another one: to close such a window is to pull a monitor's plug.

A headless sway has no way to lose an output."""

from sway_session import SwaySession

_OUTPUT_WINDOWS = """default_border none
for_window [app_id="wlroots"] floating enable
"""


class NestedSwaySession(SwaySession):
    """Two outputs beside each other, WL-1 and WL-2, each as large as the session's width and height say."""

    def unplug(self, output):
        """Takes the output away."""
        self._tell_outside(f'[title="{output}"] kill')
        self.wait_for(lambda: output not in {each["name"] for each in self.outputs()}, what=f"the end of {output}")

    def _start_compositor(self):
        screen = f"output HEADLESS-1 mode {self.width}x{self.height}"
        headless = {"WLR_BACKENDS": "headless", "WLR_LIBINPUT_NO_DEVICES": "1"}
        _, self._outside = self.start_sway("outer-sway", screen, _OUTPUT_WINDOWS, headless)
        nested = {"WLR_BACKENDS": "wayland", "WLR_WL_OUTPUTS": "2", "WAYLAND_DISPLAY": self._outside["WAYLAND_DISPLAY"]}
        self.compositor, found = self.start_sway("sway", f"output * mode {self.width}x{self.height}", "", nested)
        self.environment.update(found)

    def _start_desktop(self):
        super()._start_desktop()
        self.measure_outputs()

    def _tell_outside(self, command):
        self.tool(["swaymsg", "-s", self._outside["SWAYSOCK"], command])
