#pragma once

#include "ui/watchlist/CoinToggleModel.h"

#include <QListView>
#include <QStyledItemDelegate>

namespace tickwise {

class CoinLogoStore;

/// Paints a coin's row: logo, symbol over name, and the symbol that tells whether it is in the watchlist.
class CoinToggleDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    static constexpr int rowHeight = 44; ///< points

    CoinToggleDelegate(const CoinToggleModel &model, CoinLogoStore *logos, QObject *parent = nullptr);

    /// Marks the current row also while the keyboard is elsewhere: in a field whose keys move through the rows.
    void setAlwaysMarksCurrent(bool always) { m_alwaysMarksCurrent = always; }

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
    QSize sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const override;

Q_SIGNALS:
    /// A row came into sight.
    void coinSeen(const QString &id) const;

private:
    bool isMarked(const QStyleOptionViewItem &option, const QModelIndex &index) const;
    void paintTexts(QPainter &painter, const QRect &box, const CoinMetadata &coin,
                    const QStyleOptionViewItem &option) const;

    const CoinToggleModel &m_model;
    CoinLogoStore *m_logos;
    bool m_alwaysMarksCurrent = false;
};

/// Coins as rows that toggle their place in the watchlist: by a click, with Enter or the space bar, or by the row's
/// action of assistive programs.
class CoinToggleList : public QListView
{
    Q_OBJECT

public:
    CoinToggleList(CoinToggleModel &model, CoinLogoStore *logos, QWidget *parent = nullptr);

    /// Toggles the current row, if there is one.
    void toggleCurrent();
    /// Makes the row above or below the current one current.
    void moveCurrent(int rows);

Q_SIGNALS:
    void toggled(const QString &coinId);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;
    QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex &index, const QEvent *event) const override;

private:
    void toggle(const QModelIndex &index);

    CoinToggleModel &m_model;
};

} // namespace tickwise
