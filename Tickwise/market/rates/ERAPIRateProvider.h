#pragma once

#include "market/rates/ExchangeRateProvider.h"

namespace tickwise {

/// ExchangeRate-API's open access: `result` must be "success".
class ERAPIRateProvider : public ExchangeRateProvider
{
public:
    using ExchangeRateProvider::ExchangeRateProvider;
    Result<RateTable> decode(const QByteArray &body) const override;
};

} // namespace tickwise
