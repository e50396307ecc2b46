#pragma once

#include "doubles/MemoryDefaults.h"
#include "market/PriceService.h"
#include "pipeline/PriceAlertNotifying.h"
#include "pipeline/StatusItem.h"

#include <QCoreApplication>

#include <map>
#include <memory>
#include <vector>

namespace tickwise::test {

/// A price service whose answers the test gives when it likes; they arrive from the event loop.
class FakePriceFetching : public PriceFetching
{
public:
    struct Request
    {
        QStringList symbols;
        BaseCurrency currency;
    };

    [[nodiscard]] Subscription fetchSnapshot(const QStringList &symbols, BaseCurrency currency,
                                             Completion<PriceSnapshot> done) override
    {
        requests.push_back({symbols, currency});
        auto pending = std::make_unique<Pending>(*this, std::move(done));
        m_open = pending.get();
        return Subscription(std::move(pending));
    }

    bool isOpen() const { return m_open; }

    /// Answers the request under way and runs the event loop until the answer has arrived.
    void answer(const Result<PriceSnapshot> &result)
    {
        Q_ASSERT(m_open);
        m_open->delivery = deliverLater<PriceSnapshot>(result, std::exchange(m_open->done, {}));
        QCoreApplication::processEvents();
    }
    /// The same with prices by symbol and no 24-hour changes.
    void answer(const std::map<QString, double> &prices, double rate = 1.0)
    {
        PriceSnapshot snapshot;
        snapshot.usdToTargetRate = rate;
        for (const auto &[symbol, price] : prices)
            snapshot.prices.insert(symbol, price);
        answer(snapshot);
    }

    std::vector<Request> requests;

private:
    struct Pending : Operation
    {
        Pending(FakePriceFetching &owner, Completion<PriceSnapshot> completion)
            : m_owner(owner)
            , done(std::move(completion))
        {
        }
        ~Pending() override
        {
            if (m_owner.m_open == this)
                m_owner.m_open = nullptr;
        }
        FakePriceFetching &m_owner;
        Completion<PriceSnapshot> done;
        Subscription delivery;
    };
    Pending *m_open = nullptr;
};

/// Remembers the alerts that fired.
class RecordingNotifier : public PriceAlertNotifying
{
public:
    struct Alert
    {
        Coin coin;
        CoinAlertKind kind;
        BaseCurrency currency;
        double threshold;
        double changePercent;
        double rate;
    };

    void notify(const Coin &coin, CoinAlertKind kind, BaseCurrency currency, double threshold, double changePercent,
                double rate) override
    {
        alerts.push_back({coin, kind, currency, threshold, changePercent, rate});
    }

    std::vector<Alert> alerts;
};

/// A status item without a panel.
class RecordingStatusItem : public StatusItem
{
public:
    void setContent(const StatusItemContent &content) override
    {
        if (contents.empty() || contents.back() != content)
            contents.push_back(content);
    }
    void setMenu(std::function<Menu()> provider) override { menu = std::move(provider); }
    void menuChanged() override { shownMenus.push_back(menu()); }
    PanelAppearance appearance() const override { return m_appearance; }
    void setAppearance(PanelAppearance appearance)
    {
        m_appearance = appearance;
        Q_EMIT appearanceChanged();
    }

    std::vector<StatusItemContent> contents; ///< each that differs from the one before
    std::function<Menu()> menu;
    std::vector<Menu> shownMenus; ///< the menu at each `menuChanged`

private:
    PanelAppearance m_appearance = PanelAppearance::dark;
};

} // namespace tickwise::test
