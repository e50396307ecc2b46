#pragma once

#include <QImage>
#include <QRectF>
#include <QString>

#include <optional>

class QColor;
class QPainter;

namespace tickwise {

/// Draws the shipped logo of that name ("coin-bitcoin") into the box; false when there is none.
bool paintShippedLogo(QPainter &painter, const QRectF &box, const QString &assetName);

/// Draws a downloaded logo into the box.
void paintLogoImage(QPainter &painter, const QRectF &box, const QImage &image);

/// Draws the placeholder for a missing logo: its letters on a translucent circle, both in the accent color.
void paintLogoPlaceholder(QPainter &painter, const QRectF &box, const QString &symbol, const QColor &accent);

/// The letters of the placeholder: the first three characters of the symbol.
QString placeholderLetters(const QString &symbol);

/// Draws the first of these that exists: the shipped logo, the downloaded one, the placeholder.
void paintCoinLogo(QPainter &painter, const QRectF &box, const std::optional<QString> &assetName,
                   const std::optional<QImage> &image, const QString &symbol, const QColor &accent);

} // namespace tickwise
