#include "ui/updates/appcast/UpdateFeedFetch.h"

#include "ui/updates/appcast/AppcastParser.h"

namespace tickwise {

namespace {

constexpr std::chrono::seconds feedTimeout{15};
constexpr std::chrono::seconds feedDeadline{60};

UpdateFeedResult feedResult(const Result<HttpResponse> &response)
{
    if (!response)
        return tl::unexpected(feedFailure(response.error()));
    if (response->status < 200 || response->status > 299)
        return tl::unexpected(feedFailure(UrlLoadingError{UrlErrorCode::badServerResponse, {}, response->status}));
    const auto items = parseAppcast(response->body);
    if (!items)
        return tl::unexpected(feedFailure(items.error()));
    return *items;
}

} // namespace

Subscription fetchUpdateFeed(HttpClient &http, const QUrl &feed, std::function<void(UpdateFeedResult)> done)
{
    HttpRequest request;
    request.url = feed;
    request.timeout = feedTimeout;
    request.deadline = feedDeadline;
    request.maximumBytes = maximumAppcastBytes;
    return http.send(request,
                     [done = std::move(done)](const Result<HttpResponse> &response) { done(feedResult(response)); });
}

} // namespace tickwise
