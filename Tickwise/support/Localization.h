#pragma once

#include <QString>

#include <memory>

class QTranslator;

namespace tickwise {

/// One language's texts.
using LocalizationBundle = std::shared_ptr<const QTranslator>;

/// Opens the table `<resources>/<language>.lproj/Localizable.qm`; none where it cannot be opened.
LocalizationBundle openLocalizationBundle(const QString &language, const QString &resources = QStringLiteral(":"));

/// English, the language that texts fall back to. Without its table it answers every key with nothing.
LocalizationBundle mainLocalizationBundle();

/// The bundle that texts are looked up in; the main one at first. Main thread only.
const LocalizationBundle &currentLocalizationBundle();

/// Makes every later lookup answer from that bundle. Main thread only.
void setCurrentLocalizationBundle(LocalizationBundle bundle);

/// The text of the key in the current bundle; the key itself when the table lacks it.
QString localized(const QString &key);

/// The same in a bundle of the caller's choice.
QString localized(const QString &key, const LocalizationBundle &bundle);

} // namespace tickwise
