#pragma once

#include "market/HttpClient.h"

#include <deque>
#include <map>

namespace tickwise::test {

/// Answers requests from a script, from the event loop. Answers are queued per address prefix; the last one of a queue
/// stays. A request without an answer fails with `cannotConnectToHost`. `hold()` keeps a request open until it is
/// dropped.
class ScriptedHttpClient : public HttpClient
{
public:
    void answer(const QString &prefix, int status, const QByteArray &body,
                std::vector<std::pair<QByteArray, QByteArray>> headers = {});
    void fail(const QString &prefix, Error error);
    void hold(const QString &prefix);
    /// Forgets the answers of that prefix.
    void clear(const QString &prefix);

    [[nodiscard]] Subscription send(const HttpRequest &request, Completion<HttpResponse> done) override;

    /// Every request so far, in order.
    const std::vector<HttpRequest> &requests() const { return m_requests; }
    /// The requests whose address starts with the prefix.
    std::vector<QUrl> urls(const QString &prefix = {}) const;
    void forgetRequests() { m_requests.clear(); }
    /// Requests under way: neither answered nor dropped.
    int open() const { return *m_open; }

private:
    struct Step
    {
        std::optional<Result<HttpResponse>> result; ///< none: hold
    };
    void queue(const QString &prefix, Step step);
    Step next(const QString &address);

    std::map<QString, std::deque<Step>> m_script;
    std::vector<HttpRequest> m_requests;
    std::shared_ptr<int> m_open = std::make_shared<int>(0);
};

} // namespace tickwise::test
