#include "doubles/ScriptedHttpClient.h"

namespace tickwise::test {

namespace {

/// A request that waits for its turn of the event loop, or for ever.
class ScriptedRequest : public Operation
{
public:
    ScriptedRequest(std::shared_ptr<int> open, std::optional<Result<HttpResponse>> result,
                    Completion<HttpResponse> done)
        : m_open(std::move(open))
    {
        ++*m_open;
        if (!result)
            return;
        QMetaObject::invokeMethod(
            &m_context,
            [this, result = std::move(*result), done = std::move(done)] {
                close();
                done(result);
            },
            Qt::QueuedConnection);
    }
    ~ScriptedRequest() override { close(); }

private:
    void close()
    {
        if (m_open)
            --*m_open;
        m_open.reset();
    }

    std::shared_ptr<int> m_open;
    QObject m_context;
};

} // namespace

void ScriptedHttpClient::answer(const QString &prefix, int status, const QByteArray &body,
                                std::vector<std::pair<QByteArray, QByteArray>> headers)
{
    queue(prefix, {HttpResponse{status, std::move(headers), body}});
}

void ScriptedHttpClient::fail(const QString &prefix, Error error)
{
    queue(prefix, {failure(std::move(error))});
}

void ScriptedHttpClient::hold(const QString &prefix)
{
    queue(prefix, {std::nullopt});
}

void ScriptedHttpClient::clear(const QString &prefix)
{
    m_script.erase(prefix);
}

void ScriptedHttpClient::queue(const QString &prefix, Step step)
{
    m_script[prefix].push_back(std::move(step));
}

ScriptedHttpClient::Step ScriptedHttpClient::next(const QString &address)
{
    std::deque<Step> *best = nullptr;
    for (auto &[prefix, steps] : m_script) {
        if (address.startsWith(prefix))
            best = &steps; // prefixes come in order, so the longest match comes last
    }
    if (!best)
        return {failure(UrlLoadingError{UrlErrorCode::cannotConnectToHost, QStringLiteral("nothing scripted")})};
    Step step = best->front();
    if (best->size() > 1)
        best->pop_front();
    return step;
}

Subscription ScriptedHttpClient::send(const HttpRequest &request, Completion<HttpResponse> done)
{
    m_requests.push_back(request);
    Step step = next(request.url.toString(QUrl::FullyEncoded));
    return Subscription(std::make_unique<ScriptedRequest>(m_open, std::move(step.result), std::move(done)));
}

std::vector<QUrl> ScriptedHttpClient::urls(const QString &prefix) const
{
    std::vector<QUrl> urls;
    for (const HttpRequest &request : m_requests) {
        if (request.url.toString(QUrl::FullyEncoded).startsWith(prefix))
            urls.push_back(request.url);
    }
    return urls;
}

} // namespace tickwise::test
