#pragma once

#include "market/Endpoints.h"
#include "support/Result.h"

#include <QByteArray>
#include <QHash>

#include <memory>
#include <vector>

namespace tickwise {

/// Units of a currency for one US dollar, by upper-case ISO code.
using RateTable = QHash<QString, double>;

/// One public service of US-dollar rates.
///
/// A table that gives one of the display currencies a rate that is no finite number above zero is nonsense as a whole
/// (`cannotParseResponse`); other codes with such a rate are left out. An empty table is `cannotParseResponse`.
class ExchangeRateProvider
{
public:
    explicit ExchangeRateProvider(QString urlString)
        : m_urlString(std::move(urlString))
    {
    }
    virtual ~ExchangeRateProvider() = default;

    const QString &urlString() const { return m_urlString; }

    /// Reads the body of a 2xx answer.
    virtual Result<RateTable> decode(const QByteArray &body) const = 0;

private:
    QString m_urlString;
};

/// ExchangeRate-API's open access: `result` must be "success".
class ERAPIRateProvider : public ExchangeRateProvider
{
public:
    using ExchangeRateProvider::ExchangeRateProvider;
    Result<RateTable> decode(const QByteArray &body) const override;
};

/// The open currency-api data set: the table is under `usd`, its codes in lower case.
class CurrencyAPIRateProvider : public ExchangeRateProvider
{
public:
    using ExchangeRateProvider::ExchangeRateProvider;
    Result<RateTable> decode(const QByteArray &body) const override;
};

/// The three providers in the order in which they are tried.
std::vector<std::unique_ptr<ExchangeRateProvider>> makeExchangeRateProviders(const Endpoints &endpoints);

} // namespace tickwise
