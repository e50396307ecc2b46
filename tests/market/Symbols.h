#pragma once

#include <QString>

namespace tickwise::test {

inline const auto btc = QStringLiteral("BTC");
inline const auto eth = QStringLiteral("ETH");
inline const auto sol = QStringLiteral("SOL");
inline const auto usdt = QStringLiteral("USDT");
inline const auto xyz = QStringLiteral("XYZ"); ///< no exchange has it

} // namespace tickwise::test
