#include "platform/curl/CurlHttpClient.h"

#include "foundation/OneShot.h"
#include "foundation/Registration.h"
#include "foundation/TextCase.h"
#include "platform/curl/CurlLibrary.h"

#include <algorithm>
#include <array>
#include <climits>
#include <csignal>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace querlin {

namespace {

using Answer = std::expected<HttpResponse, HttpError>;

constexpr long mostRedirects = 10;
/// Of all responses of one exchange together.
constexpr std::size_t largestHeadersInBytes = 256U << 10U;
/// Nothing needs the worker to wake up by itself; curl shortens this to its own timers.
constexpr int longestNapInMilliseconds = 60'000;

constexpr std::string_view invalidAddress = "Die Adresse ist ungültig.";
constexpr std::string_view invalidUserAgent = "Die Kennung des Programms ist ungültig.";

struct ErrorText {
    CURLcode code;
    std::string_view text;
};

/// What users meet; the rest is reported in curl's own words.
constexpr std::array errorTexts = {
    ErrorText{CURLE_COULDNT_RESOLVE_HOST, "Der Server wurde nicht gefunden."},
    ErrorText{CURLE_COULDNT_RESOLVE_PROXY, "Der Proxy-Server wurde nicht gefunden."},
    ErrorText{CURLE_COULDNT_CONNECT, "Keine Verbindung zum Server."},
    ErrorText{CURLE_OPERATION_TIMEDOUT, "Zeitüberschreitung bei der Anfrage."},
    ErrorText{CURLE_PEER_FAILED_VERIFICATION, "Das Zertifikat des Servers ist nicht vertrauenswürdig."},
    ErrorText{CURLE_SSL_ISSUER_ERROR, "Das Zertifikat des Servers ist nicht vertrauenswürdig."},
    ErrorText{CURLE_SSL_CONNECT_ERROR, "Die gesicherte Verbindung kam nicht zustande."},
    ErrorText{CURLE_TOO_MANY_REDIRECTS, "Der Server leitet zu oft weiter."},
    ErrorText{CURLE_UNSUPPORTED_PROTOCOL, "Der Server leitet auf eine unsichere Adresse weiter."},
    ErrorText{CURLE_LOGIN_DENIED, "Eine Adresse mit Anmeldedaten ist nicht erlaubt."},
    ErrorText{CURLE_URL_MALFORMAT, invalidAddress},
    ErrorText{CURLE_FILESIZE_EXCEEDED, "Die Antwort ist zu groß."},
    ErrorText{CURLE_WRITE_ERROR, "Die Antwort ist zu groß."}, // Nothing else makes our own callbacks refuse.
    ErrorText{CURLE_WEIRD_SERVER_REPLY, "Die Antwort des Servers ist unverständlich."},
    ErrorText{CURLE_GOT_NOTHING, "Die Verbindung ist abgebrochen."},
    ErrorText{CURLE_PARTIAL_FILE, "Die Verbindung ist abgebrochen."},
    ErrorText{CURLE_RECV_ERROR, "Die Verbindung ist abgebrochen."},
    ErrorText{CURLE_SEND_ERROR, "Die Verbindung ist abgebrochen."},
    ErrorText{CURLE_HTTP2, "Die Verbindung ist abgebrochen."},
    ErrorText{CURLE_HTTP2_STREAM, "Die Verbindung ist abgebrochen."},
    ErrorText{CURLE_ABORTED_BY_CALLBACK, "Die Anfrage wurde abgebrochen."},
    ErrorText{CURLE_FAILED_INIT, "Die Bibliothek für Netzanfragen (libcurl) fehlt oder startet nicht."},
};

HttpError errorFor(CURLcode code) {
    const auto* const row = std::ranges::find(errorTexts, code, &ErrorText::code);
    if (row != errorTexts.end()) return {std::string(row->text)};
    return {std::string("Die Anfrage ist fehlgeschlagen: ") + CurlLibrary::get()->easyStrerror(code) + "."};
}

bool hasScheme(std::string_view address, std::string_view scheme) {
    return lowercase(address.substr(0, scheme.size())) == scheme;
}
bool isHttps(std::string_view address) { return hasScheme(address, "https://"); }
bool isHttp(std::string_view address) { return hasScheme(address, "http://"); }

/// A line break would begin a header of its own, and a NUL would end the text for curl alone.
bool hasControlCharacter(std::string_view text) {
    return std::ranges::any_of(text, [](char c) { return (c >= '\0' && c < ' ') || c == '\x7F'; });
}

/// Never 0, which would mean none; curl takes no more than 24 days.
long curlTimeout(Duration timeout) {
    const auto milliseconds = std::chrono::ceil<std::chrono::milliseconds>(timeout).count();
    return std::min<long>(milliseconds, INT_MAX);
}

/// An exchange that is wanted.
struct Order {
    HttpRequest request;
    OneShot<Answer>::Sender reply;
    std::size_t bodyLimitInBytes;
    std::uint64_t number = 0;
};

/// One exchange under way, the worker's alone.
struct Transfer {
    Transfer(const CurlLibrary& library, Order wanted) :
        curl(library), handle(library.easyInit()), order(std::move(wanted)) {}
    ~Transfer() { curl.easyCleanup(handle); }
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;

    std::string_view effectiveAddress() const {
        const char* address = nullptr;
        curl.easyGetinfo(handle, CURLINFO_EFFECTIVE_URL, &address);
        return address ? address : "";
    }

    const CurlLibrary& curl;
    CURL* handle;
    Order order;
    std::string body;
    std::size_t headersInBytes = 0;
    bool isHttpsOnly = false;
};

std::size_t receiveBody(const char* bytes, std::size_t, std::size_t count, void* userData) {
    auto& transfer = *static_cast<Transfer*>(userData);
    if (count > transfer.order.bodyLimitInBytes - transfer.body.size()) return CURL_WRITEFUNC_ERROR;
    transfer.body.append(bytes, count);
    return count;
}

/// Sees each header line of each response, before curl follows a redirect.
std::size_t receiveHeader(const char*, std::size_t, std::size_t count, void* userData) {
    auto& transfer = *static_cast<Transfer*>(userData);
    transfer.headersInBytes += count;
    if (transfer.headersInBytes > largestHeadersInBytes) return CURL_WRITEFUNC_ERROR;
    if (!transfer.isHttpsOnly && isHttps(transfer.effectiveAddress())) {
        // Also after a redirect that went up from http.
        transfer.isHttpsOnly = true;
        const auto result = transfer.curl.easySetopt(transfer.handle, CURLOPT_REDIR_PROTOCOLS_STR, "https");
        if (result != CURLE_OK) return CURL_WRITEFUNC_ERROR;
    }
    return count;
}

/// Sets the options of a transfer.
CURLcode prepare(Transfer& transfer) {
    const auto& request = transfer.order.request;
    CURLcode result = transfer.handle ? CURLE_OK : CURLE_OUT_OF_MEMORY;
    const auto set = [&](CURLoption option, auto value) {
        if (result == CURLE_OK) result = transfer.curl.easySetopt(transfer.handle, option, value);
    };
    const bool isHead = request.method == HttpRequest::Method::head;
    set(CURLOPT_URL, request.address.c_str());
    set(CURLOPT_USERAGENT, request.userAgent.c_str());
    set(CURLOPT_NOBODY, isHead ? 1L : 0L);
    set(CURLOPT_TIMEOUT_MS, curlTimeout(request.timeout));

    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_REDIR_PROTOCOLS_STR, "http,https");
    set(CURLOPT_FOLLOWLOCATION, 1L);
    set(CURLOPT_MAXREDIRS, mostRedirects);
    set(CURLOPT_DISALLOW_USERNAME_IN_URL, 1L);

    set(CURLOPT_WRITEFUNCTION, &receiveBody);
    set(CURLOPT_WRITEDATA, &transfer);
    set(CURLOPT_HEADERFUNCTION, &receiveHeader);
    set(CURLOPT_HEADERDATA, &transfer);
    set(CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
    // Of a HEAD's answer the length says nothing about what will come.
    if (!isHead) set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(transfer.order.bodyLimitInBytes));

    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_QUICK_EXIT, 1L); // Name servers aren't waited for.
    set(CURLOPT_PRIVATE, &transfer);
    return result;
}

/// What is wrong with a request before anybody is asked.
std::optional<HttpError> faultOf(const HttpRequest& request) {
    const bool isWeb = isHttp(request.address) || isHttps(request.address);
    if (!isWeb || hasControlCharacter(request.address)) return HttpError{std::string(invalidAddress)};
    if (hasControlCharacter(request.userAgent)) return HttpError{std::string(invalidUserAgent)};
    if (request.timeout <= Duration(0)) return errorFor(CURLE_OPERATION_TIMEDOUT);
    return std::nullopt;
}

/// What has become of a transfer that has ended.
Answer takeAnswer(Transfer& transfer, CURLcode result) {
    long status = 0;
    transfer.curl.easyGetinfo(transfer.handle, CURLINFO_RESPONSE_CODE, &status);
    // One code of curl for an address that it may not follow and for an answer that isn't HTTP at all.
    const bool isRedirect = status / 100 == 3;
    if (result == CURLE_UNSUPPORTED_PROTOCOL && !isRedirect) result = CURLE_WEIRD_SERVER_REPLY;
    if (result != CURLE_OK) return std::unexpected(errorFor(result));

    HttpResponse response;
    response.status = static_cast<int>(status);
    constexpr int lastResponse = -1;
    curl_header* header = nullptr;
    while ((header = transfer.curl.easyNextheader(transfer.handle, CURLH_HEADER, lastResponse, header)) !=
           nullptr) {
        response.headers.emplace_back(header->name, header->value);
    }
    response.body = std::move(transfer.body);
    return response;
}

/// A connection that breaks off is an error of its transfer and never a signal to the program.
void blockBrokenPipeSignal() {
    sigset_t signals{};
    ::sigemptyset(&signals);
    ::sigaddset(&signals, SIGPIPE);
    ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
}

} // namespace

/// Moves the transfers on its thread, which begins with the first of them. What the main thread wants is left
/// in `arrived_`, `abandoned_` and `isEnding_`; the thread is woken and takes it from there. The transfers
/// are the thread's alone.
class CurlHttpClient::Worker {
public:
    Worker() = default;
    ~Worker() {
        {
            const std::scoped_lock guard(mutex_);
            isEnding_ = true;
        }
        wakeUp();
    }
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    /// Begins a transfer, which is abandoned when the registration goes, if it hasn't ended by then.
    static Registration begin(const std::shared_ptr<Worker>& worker, Order order);

private:
    void abandon(std::uint64_t number);
    void wakeUp();

    void serve();
    void refuseOrders();
    /// Takes over what the main thread has left; false at the end.
    bool takeOrders();
    void add(Order order);
    void end(Transfer& transfer, CURLcode result);
    void endFinishedTransfers();

    std::mutex mutex_;
    std::vector<Order> arrived_;
    std::vector<std::uint64_t> abandoned_;
    bool isServing_ = false;
    bool isEnding_ = false;
    CURLM* multi_ = nullptr; ///< the thread's; whoever wakes it does that under the lock

    std::uint64_t lastNumber_ = 0; // The main thread's.

    const CurlLibrary* curl_ = nullptr;
    std::map<std::uint64_t, std::unique_ptr<Transfer>> running_; // By number: curl uses addresses again.
    std::jthread thread_; // Last: its end is awaited before the rest goes.
};

Registration CurlHttpClient::Worker::begin(const std::shared_ptr<Worker>& worker, Order order) {
    const auto number = ++worker->lastNumber_;
    order.number = number;
    bool isFirst = false;
    {
        const std::scoped_lock guard(worker->mutex_);
        worker->arrived_.push_back(std::move(order));
        isFirst = !std::exchange(worker->isServing_, true);
    }
    if (isFirst) worker->thread_ = std::jthread([own = worker.get()] { own->serve(); });
    worker->wakeUp();
    return Registration([weak = std::weak_ptr(worker), number] {
        if (const auto alive = weak.lock()) alive->abandon(number);
    });
}

void CurlHttpClient::Worker::abandon(std::uint64_t number) {
    {
        const std::scoped_lock guard(mutex_);
        abandoned_.push_back(number);
    }
    wakeUp();
}

/// A thread that isn't up yet looks at its orders by itself.
void CurlHttpClient::Worker::wakeUp() {
    const std::scoped_lock guard(mutex_);
    if (multi_) curl_->multiWakeup(multi_);
}

void CurlHttpClient::Worker::serve() {
    blockBrokenPipeSignal();
    curl_ = CurlLibrary::get();
    auto* const multi = curl_ ? curl_->multiInit() : nullptr;
    if (!multi) {
        refuseOrders();
        return;
    }
    const auto publish = [this](CURLM* handle) {
        const std::scoped_lock guard(mutex_);
        multi_ = handle;
    };
    publish(multi);
    while (takeOrders()) {
        int count = 0;
        curl_->multiPerform(multi, &count);
        endFinishedTransfers();
        curl_->multiPoll(multi, nullptr, 0, longestNapInMilliseconds, nullptr);
    }
    while (!running_.empty()) end(*running_.begin()->second, CURLE_ABORTED_BY_CALLBACK);
    publish(nullptr);
    curl_->multiCleanup(multi);
}

/// The next order tries again.
void CurlHttpClient::Worker::refuseOrders() {
    const std::scoped_lock guard(mutex_);
    for (const auto& order : arrived_) order.reply.send(std::unexpected(errorFor(CURLE_FAILED_INIT)));
    arrived_.clear();
    abandoned_.clear();
    isServing_ = false;
}

bool CurlHttpClient::Worker::takeOrders() {
    std::unique_lock guard(mutex_);
    auto arrived = std::exchange(arrived_, {});
    const auto abandoned = std::exchange(abandoned_, {});
    const bool isEnding = isEnding_;
    guard.unlock();

    for (auto& order : arrived) add(std::move(order));
    for (const auto number : abandoned) {
        const auto found = running_.find(number);
        if (found != running_.end()) end(*found->second, CURLE_ABORTED_BY_CALLBACK);
    }
    return !isEnding;
}

void CurlHttpClient::Worker::add(Order order) {
    const auto number = order.number;
    auto& added =
        *running_.emplace(number, std::make_unique<Transfer>(*curl_, std::move(order))).first->second;
    auto result = prepare(added);
    if (result == CURLE_OK && curl_->multiAddHandle(multi_, added.handle) != CURLM_OK)
        result = CURLE_FAILED_INIT;
    if (result != CURLE_OK) end(added, result);
}

void CurlHttpClient::Worker::end(Transfer& transfer, CURLcode result) {
    transfer.order.reply.send(takeAnswer(transfer, result)); // Nobody takes it if it was abandoned.
    curl_->multiRemoveHandle(multi_, transfer.handle);
    running_.erase(transfer.order.number);
}

void CurlHttpClient::Worker::endFinishedTransfers() {
    int left = 0;
    while (const CURLMsg* message = curl_->multiInfoRead(multi_, &left)) {
        if (message->msg != CURLMSG_DONE) continue;
        const auto result = message->data.result; // NOLINT(*-union-access): curl's; gone with the handle
        Transfer* transfer = nullptr;
        curl_->easyGetinfo(message->easy_handle, CURLINFO_PRIVATE, &transfer);
        end(*transfer, result);
    }
}

CurlHttpClient::CurlHttpClient(MainQueue& queue, std::size_t bodyLimitInBytes) :
    queue_(queue), bodyLimitInBytes_(bodyLimitInBytes), worker_(std::make_shared<Worker>()) {}
CurlHttpClient::~CurlHttpClient() = default;

Task<Answer> CurlHttpClient::send(HttpRequest request) {
    if (auto fault = faultOf(request)) co_return std::unexpected(std::move(*fault));
    const OneShot<Answer> answer(queue_);
    Order order{std::move(request), answer.sender(), bodyLimitInBytes_};
    const Registration underWay = Worker::begin(worker_, std::move(order));
    // From here on the client may go before the task does.
    Answer result = co_await answer;
    co_return std::move(result);
}

} // namespace querlin
