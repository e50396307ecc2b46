#include "ui/controls/CoinLogoView.h"

#include "catalog/logos/CoinLogoPainting.h"
#include "catalog/logos/LogoDecoding.h"

#include <QPainter>

namespace tickwise {

namespace {

constexpr int usualSide = 32; // logical pixels

} // namespace

CoinLogoKind coinLogoKind(const std::optional<QString> &assetName, bool hasStore)
{
    if (assetName && !assetName->isEmpty())
        return CoinLogoKind::shipped;
    return hasStore ? CoinLogoKind::cached : CoinLogoKind::remote;
}

CoinLogoView::CoinLogoView(CoinLogoSources sources, QWidget *parent)
    : QWidget(parent)
    , m_sources(std::move(sources))
{
    if (m_sources.store)
        connect(m_sources.store, &CoinLogoStore::cachedIDsChanged, this, &CoinLogoView::showCached);
}

QSize CoinLogoView::sizeHint() const
{
    return {usualSide, usualSide};
}

void CoinLogoView::setContent(const CoinLogoContent &content)
{
    if (m_content == content)
        return;
    m_content = content;
    m_loading.cancel();
    setAccessibleName(content.symbol);
    m_image.reset();
    update();
    switch (coinLogoKind(content.assetName, m_sources.store != nullptr)) {
    case CoinLogoKind::shipped:
        break;
    case CoinLogoKind::cached:
        showCached();
        break;
    case CoinLogoKind::remote:
        load();
        break;
    }
}

void CoinLogoView::showCached()
{
    if (coinLogoKind(m_content.assetName, true) == CoinLogoKind::cached)
        setImage(m_sources.store->image(m_content.coinID));
}

void CoinLogoView::load()
{
    const QString address = m_content.urlString.value_or(QString());
    if (!m_sources.client || !m_sources.isAllowed(address))
        return;
    m_loading = m_sources.client->send(logoRequest(address, m_sources.isAllowed),
                                       [this](const Result<HttpResponse> &result) { showLoaded(result); });
}

void CoinLogoView::showLoaded(const Result<HttpResponse> &result)
{
    if (result && carriesLogo(*result))
        setImage(decodeLogo(result->body));
}

void CoinLogoView::setImage(std::optional<QImage> image)
{
    if (m_image == image)
        return;
    m_image = std::move(image);
    update();
}

void CoinLogoView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    paintCoinLogo(painter, rect(), m_content.assetName, m_image, m_content.symbol,
                  palette().color(QPalette::Highlight));
}

} // namespace tickwise
