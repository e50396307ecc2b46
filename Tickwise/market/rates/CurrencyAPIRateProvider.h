#pragma once

#include "market/rates/ExchangeRateProvider.h"

namespace tickwise {

/// The open currency-api data set: the table is under `usd`, its codes in lower case.
class CurrencyAPIRateProvider : public ExchangeRateProvider
{
public:
    using ExchangeRateProvider::ExchangeRateProvider;
    Result<RateTable> decode(const QByteArray &body) const override;
};

} // namespace tickwise
