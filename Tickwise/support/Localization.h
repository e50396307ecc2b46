#pragma once

#include <QString>

#include <memory>

class QTranslator;

namespace tickwise {

/// One language's texts.
using LocalizationBundle = std::shared_ptr<const QTranslator>;

/// Opens the table `<resources>/<language>.lproj/Localizable.qm`; none when it cannot be opened.
LocalizationBundle openLocalizationBundle(const QString &language, const QString &resources = QStringLiteral(":"));

/// The English texts, to which other languages fall back; without texts when their table cannot be opened.
LocalizationBundle mainLocalizationBundle();

/// The bundle that texts are looked up in; the main one at first. Main thread only.
const LocalizationBundle &currentLocalizationBundle();

/// Every later lookup uses that bundle. Ends the program on another thread than the main one.
void setCurrentLocalizationBundle(LocalizationBundle bundle);

/// The text of the key in the current bundle; the key itself when the table lacks it.
QString localized(const QString &key);

/// The same in a given bundle.
QString localized(const QString &key, const LocalizationBundle &bundle);

} // namespace tickwise
