#pragma once

#include "support/Result.h"

#include <QByteArray>
#include <QHash>

namespace tickwise {

/// Units of a currency for one US dollar, by upper-case ISO code.
using RateTable = QHash<QString, double>;

/// One public service of US-dollar rates.
///
/// A rate that is no finite number above zero makes the whole table unusable (`cannotParseResponse`) when its code is
/// one of the display currencies; other codes with such a rate are left out. An empty table is `cannotParseResponse`.
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

} // namespace tickwise
