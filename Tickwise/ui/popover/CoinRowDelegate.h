#pragma once

#include "support/drawing/TabularText.h"
#include "ui/popover/CoinRowModel.h"

#include <QStyledItemDelegate>

namespace tickwise {

class CoinLogoStore;

/// Paints a coin's row: logo and symbol on the left, price and change on the right.
class CoinRowDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    static constexpr int rowHeight = 52; ///< points

    CoinRowDelegate(const CoinRowModel &model, CoinLogoStore *logos, QObject *parent = nullptr);

    /// Takes the desktop's font and text scale anew.
    void applyMetrics();

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

private:
    struct Fonts
    {
        QFont symbol;
        QFont price;
        QFont change;
        TabularText priceText;
        TabularText changeText;
    };

    static Fonts currentFonts();
    void paintGround(QPainter &painter, const QStyleOptionViewItem &option) const;
    int paintNumbers(QPainter &painter, const QRect &box, const CoinRowContent &content,
                     const QStyleOptionViewItem &option) const;

    const CoinRowModel &m_model;
    CoinLogoStore *m_logos;
    Fonts m_fonts;
};

} // namespace tickwise
