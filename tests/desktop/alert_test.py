#!/usr/bin/python3
"""Price alerts of the whole application, judged by what arrives at the notification service."""

import signal
import unittest

from application import IDENTIFIER, Application, Texts, coin, keep_picture
from desktop_session import NOTIFICATIONS, GLib, RecordingNotifications, X11Session
from panel_pixels import GREEN, RED, wait_for_box

BTC_ABOVE_100 = {"addedCoins": [coin("bitcoin", "above", 100)]}
NOTIFICATIONS_PATH = "/org/freedesktop/Notifications"
FAILED = "Failed to deliver notification: "


def above_100(price):
    return Texts("en").text("notification.priceAlert.above", "BTC", "100", price)


# One poll a column. The coins' names, alerts and prices, and which texts are due after which poll.
ROUND = (
    ("BTC", (90, 95, 101, 102, 99, 100, 99, 100)),
    ("ETH", (100, 101.9, 102, 99.45, 99.45, 101.4, 101.4, 101.4)),
    ("SOL", (110, 105, 99, 98, 101, 100, 99, 99)),
    ("XRP", (1, 5, 1, 5, 1, 5, 1, 5)),
)
ROUND_WATCHLIST = [coin("bitcoin", "above", 100), coin("ethereum", "change", 2), coin("solana", "below", 100),
                   coin("xrp", "notSet", 0)]


def due_in_round(texts):
    """The notifications (summary, body) that are due after each poll of ROUND."""
    up, down = texts.text("notification.direction.up"), texts.text("notification.direction.down")
    bitcoin, ethereum, solana = (texts.text("notification.priceAlert.title", name)
                                 for name in ("Bitcoin", "Ethereum", "Solana"))
    return [
        [],
        [],
        [(bitcoin, texts.text("notification.priceAlert.above", "BTC", "100", "101")),
         (ethereum, texts.text("notification.priceAlert.change", "ETH", up, "2.00%", "102")),
         (solana, texts.text("notification.priceAlert.below", "SOL", "100", "99"))],
        [(ethereum, texts.text("notification.priceAlert.change", "ETH", down, "2.50%", "99.45"))],
        [],
        [(bitcoin, texts.text("notification.priceAlert.above", "BTC", "100", "100")),
         (solana, texts.text("notification.priceAlert.below", "SOL", "100", "100"))],
        [],
        [(bitcoin, texts.text("notification.priceAlert.above", "BTC", "100", "100"))],
    ]


class AlertTest(unittest.TestCase):
    def make_session(self, notifications="recording"):
        return X11Session(None, window_manager=None, notifications=notifications)

    def check_round(self, language):
        texts = Texts(language)
        prices = [(symbol, values[0]) for symbol, values in ROUND]
        with self.make_session() as desktop:
            application = Application(desktop, prices, language=language, addedCoins=ROUND_WATCHLIST)
            application.wait_for_polls(1)
            arrived = 0
            for column, due in enumerate(due_in_round(texts)):
                for symbol, values in ROUND:
                    application.tell("price", symbol, values[column])
                application.poll()
                calls = desktop.notifications.wait_for_count(arrived + len(due))[arrived:]
                self.assertEqual([(call["summary"], call["body"]) for call in calls], due, f"poll {column}")
                arrived += len(due)
            call = desktop.notifications.notified()[0]
            self.assertEqual((call["app_name"], call["replaces_id"]), ("Tickwise", 0))
            self.assertEqual(call["actions"], ["default", texts.text("menu.open")])
            self.assertEqual(call["hints"]["desktop-entry"], IDENTIFIER)

    def test_round_in_english(self):
        self.check_round("en")

    def test_round_in_simplified_chinese(self):
        self.check_round("zh-Hans")

    def test_round_in_traditional_chinese(self):
        self.check_round("zh-Hant")

    def test_switched_off(self):
        with self.make_session() as desktop:
            application = Application(desktop, [("BTC", 90)], priceChangeNotificationEnabled=False, **BTC_ABOVE_100)
            application.wait_for_polls(1)
            application.set_price("BTC", 101)
            application.tell("price", "BTC", 102)
            application.change_settings(priceChangeNotificationEnabled=True)
            application.wait_for_polls(3)  # the change polls anew, and the baseline is still the 90 from before
            calls = desktop.notifications.wait_for_count(1)
            self.assertEqual([call["body"] for call in calls], [above_100("102")])

    def test_another_currency_clears_the_baseline(self):
        with self.make_session() as desktop:
            application = Application(desktop, [("BTC", 90)], commands=["rate EUR 0.5"], **BTC_ABOVE_100)
            application.wait_for_polls(1)
            application.tell("price", "BTC", 150)
            application.change_settings(baseCurrency="EUR")
            application.wait_for_polls(2)
            application.wait_for_content(text="BTC 75")
            application.set_price("BTC", 90)
            application.set_price("BTC", 120)
            calls = desktop.notifications.wait_for_count(1)
            expected = Texts("en").text("notification.priceAlert.above", "BTC", "50", "60")
            self.assertEqual([call["body"] for call in calls], [expected])

    def test_restart_fires_nothing_on_the_first_price(self):
        with self.make_session() as desktop:
            application = Application(desktop, [("BTC", 90)], **BTC_ABOVE_100)
            application.wait_for_polls(1)
            self.assertEqual(application.stop(), 0)
            application = Application(desktop, [("BTC", 150)], stored=True)
            application.wait_for_polls(1)
            application.set_price("BTC", 90)
            application.set_price("BTC", 160)
            calls = desktop.notifications.wait_for_count(1)
            self.assertEqual([call["body"] for call in calls], [above_100("160")])

    def test_failover_changes_nothing(self):
        with self.make_session() as desktop:
            application = Application(desktop, [("BTC", 90)], **BTC_ABOVE_100)
            application.wait_for_polls(1)
            application.tell("fault binanceMain reset")
            application.set_price("BTC", 101)
            application.tell("fault exchanges reset")
            self.assertNotEqual(application.poll(), "")
            application.tell("heal exchanges")
            for price in (102, 99, 100):
                self.assertEqual(application.set_price("BTC", price), "")
            calls = desktop.notifications.wait_for_count(2)
            self.assertEqual([call["body"] for call in calls], [above_100("101"), above_100("100")])

    def test_click_activates(self):
        with self.make_session() as desktop:
            application = Application(desktop, [("BTC", 90)], **BTC_ABOVE_100)
            application.wait_for_polls(1)
            application.set_price("BTC", 101)
            call = desktop.notifications.wait_for_count(1)[0]
            desktop.notifications.command("token", call["id"], "token-2")
            desktop.notifications.command("action", call["id"], "default")
            self.assertEqual(application.wait_for_event("activated", 1), "token-2")


class TroubleTest(unittest.TestCase):
    """Without a notification service that works, prices go on and each alert lost is one line of the log."""

    def make_session(self, notifications="recording"):
        return X11Session(None, window_manager=None, notifications=notifications)

    def cross(self, application):
        """Makes the alert fire once."""
        application.set_price("BTC", 90)
        application.set_price("BTC", 101)

    def check_prices_go_on(self, application):
        application.set_price("BTC", 12345, 1)
        application.wait_for_content(text="BTC 12,345")

    def wait_for_lost(self, application, count):
        application.desktop.wait_for(lambda: len(application.log_lines(FAILED)) >= count, what=f"{count} lost alerts")
        self.assertEqual(len(application.log_lines(FAILED)), count, application.process.errors())

    def service_answers(self, desktop, timeout=10):
        """Whether the service answers; when it has, it has also read every command given before."""
        try:
            desktop.bus.call(NOTIFICATIONS, NOTIFICATIONS_PATH, NOTIFICATIONS, "GetServerInformation", timeout=timeout)
        except GLib.Error:
            return False
        return True

    def test_no_service(self):
        with self.make_session(notifications=None) as desktop:
            application = Application(desktop, [("BTC", 90)], **BTC_ABOVE_100)
            application.wait_for_polls(1)
            self.cross(application)
            self.wait_for_lost(application, 1)
            self.assertEqual(len(application.log_lines("Notification permission error: ")), 1)
            self.check_prices_go_on(application)
            self.cross(application)
            self.wait_for_lost(application, 2)

    def test_service_that_was_killed_and_returns(self):
        with self.make_session() as desktop:
            application = Application(desktop, [("BTC", 90)], **BTC_ABOVE_100)
            application.wait_for_polls(1)
            self.cross(application)
            desktop.notifications.wait_for_count(1)
            desktop.stop_process(desktop.notifications.process, signal.SIGKILL)
            self.cross(application)
            self.wait_for_lost(application, 1)
            self.check_prices_go_on(application)
            desktop.notifications = RecordingNotifications(desktop)
            desktop.wait_for(lambda: desktop.bus.owner(NOTIFICATIONS), what="the new service")
            self.cross(application)
            desktop.notifications.wait_for_count(2)
            self.assertEqual(len(application.log_lines(FAILED)), 1)

    def test_service_that_hangs(self):
        with self.make_session() as desktop:
            application = Application(desktop, [("BTC", 90)], **BTC_ABOVE_100)
            application.wait_for_polls(1)
            desktop.notifications.command("hang")
            desktop.wait_for(lambda: not self.service_answers(desktop, 0.5), what="a service that hangs")
            self.cross(application)
            desktop.notifications.wait_for_count(1)
            self.check_prices_go_on(application)
            self.assertEqual(application.log_lines(FAILED), [], "the prices waited for the service")
            self.wait_for_lost(application, 1)

    def test_service_that_refuses(self):
        with self.make_session() as desktop:
            application = Application(desktop, [("BTC", 90)], **BTC_ABOVE_100)
            application.wait_for_polls(1)
            desktop.notifications.command("fail")
            self.assertTrue(self.service_answers(desktop))
            self.cross(application)
            self.wait_for_lost(application, 1)
            self.check_prices_go_on(application)
            desktop.notifications.command("answer")
            self.assertTrue(self.service_answers(desktop))
            before = len(desktop.notifications.notified())
            self.cross(application)
            desktop.notifications.wait_for_count(before + 1)


class BubbleTest(unittest.TestCase):
    """A real notification daemon shows the alert."""

    def check_bubble(self, language, name):
        with X11Session("xfce4-panel") as desktop:
            application = Application(desktop, [("BTC", 99500, -1.2)], language=language,
                                      addedCoins=[coin("bitcoin", "above", 100000)])
            wait_for_box(desktop, RED, lambda box: box[2] > 40)
            before = desktop.picture()
            application.set_price("BTC", 100250, 0.4)
            desktop.wait_for(lambda: desktop.notifications.displayed_count() == 1, what="the bubble")
            corner = {"x": desktop.width - 320, "y": desktop.height - 120, "width": 320, "height": 120}
            desktop.wait_for(lambda: desktop.picture().colours(**corner) != before.colours(**corner), what="its pixels")
            wait_for_box(desktop, GREEN, lambda box: box[2] > 40)
            keep_picture(desktop, name)
            desktop.notifications.invoke_first()
            application.wait_for_event("activated", 1)

    def test_english(self):
        self.check_bubble("en", "alert.png")

    def test_simplified_chinese(self):
        self.check_bubble("zh-Hans", "alert-zh-Hans.png")


if __name__ == "__main__":
    unittest.main()
