#pragma once

#include "catalog/logos/CoinLogoStore.h"

#include <QWidget>

namespace tickwise {

/// Where logos that are not shipped come from: the store or, without one, the network. Both objects outlive the views.
struct CoinLogoSources
{
    CoinLogoStore *store = nullptr;
    HttpClient *client = nullptr;
    LogoAddressRule isAllowed = isLogoAddress; ///< replaced only by loopback tests
};

/// The coin whose logo is shown.
struct CoinLogoContent
{
    QString coinID;
    std::optional<QString> assetName; ///< a shipped image
    std::optional<QString> urlString;
    QString symbol;
    bool operator==(const CoinLogoContent &) const = default;
};

enum class CoinLogoKind
{
    shipped,
    cached,
    remote,
};

/// The source of the logo: the shipped image when there is one, else the store, and the network only without a store.
CoinLogoKind coinLogoKind(const std::optional<QString> &assetName, bool hasStore);

/// A coin's logo, filling the widget; letters in the accent color for as long as there is none.
class CoinLogoView : public QWidget
{
    Q_OBJECT

public:
    explicit CoinLogoView(CoinLogoSources sources, QWidget *parent = nullptr);

    const CoinLogoContent &content() const { return m_content; }
    void setContent(const CoinLogoContent &content);

    /// The downloaded logo that is shown, if any.
    const std::optional<QImage> &image() const { return m_image; }
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void showCached();
    void load();
    void showLoaded(const Result<HttpResponse> &result);
    void setImage(std::optional<QImage> image);

    CoinLogoSources m_sources;
    CoinLogoContent m_content;
    std::optional<QImage> m_image;
    Subscription m_loading;
};

} // namespace tickwise
