#include "platform/recogniser/RecogniserProcess.h"

#include "platform/helper/Helper.h"
#include "platform/recogniser/RecogniserClient.h"

#include <utility>

namespace querlin {

namespace fs = std::filesystem;

namespace {

/// A session as its owner holds it: orders for the helper's thread.
class OrderedSession final : public RecognitionSession {
public:
    OrderedSession(std::shared_ptr<Helper::Orders> orders, RecogniserClient* client, std::uint32_t number,
                   std::shared_ptr<std::atomic<bool>> isSilent) :
        orders_(std::move(orders)), client_(client), number_(number), isSilent_(std::move(isSilent)) {}
    ~OrderedSession() override { giveUp(); }
    OrderedSession(const OrderedSession&) = delete;
    OrderedSession& operator=(const OrderedSession&) = delete;

    void append(const AudioBuffer& buffer) override {
        orders_->send([client = client_, number = number_, format = buffer.format,
                       samples = std::vector<float>(buffer.samples.begin(), buffer.samples.end())] {
            client->append(number, {format, samples});
            return false;
        });
    }
    void finish() override {
        orders_->send([client = client_, number = number_] {
            client->finish(number);
            return false;
        });
    }
    void cancel() override { giveUp(); }

private:
    void giveUp() {
        if (isSilent_->exchange(true)) return;
        orders_->send([client = client_, number = number_] {
            client->cancel(number);
            return false;
        });
    }

    std::shared_ptr<Helper::Orders> orders_;
    RecogniserClient* client_; ///< touched by orders alone, which run as long as it lives
    std::uint32_t number_;
    std::shared_ptr<std::atomic<bool>> isSilent_;
};

} // namespace

RecogniserProcess::RecogniserProcess(Setup setup) {
    auto client =
        std::make_unique<RecogniserClient>(std::move(setup.makeConverter), std::move(setup.onOpened));
    client_ = client.get();
    helper_ = std::make_unique<Helper>(HelperSetup{.program = std::move(setup.program),
                                                   .openRequest = RecogniserProtocol::payloadOf(setup.model),
                                                   .name = RecogniserClient::name,
                                                   .logCategory = "speech",
                                                   .longestSilence = setup.longestSilence},
                                       std::move(client));
}
RecogniserProcess::~RecogniserProcess() = default;

void RecogniserProcess::preload(std::vector<std::string> words) {
    helper_->orders()->send([client = client_, words = std::move(words)]() mutable {
        client->prepare(std::move(words));
        return true;
    });
}

std::unique_ptr<RecognitionSession> RecogniserProcess::begin(std::vector<std::string> words,
                                                             RecognitionObserver observer) {
    const auto number = ++lastNumber_;
    auto isSilent = std::make_shared<std::atomic<bool>>(false);
    helper_->orders()->send([client = client_, number, words = std::move(words),
                             observer = std::move(observer), isSilent]() mutable {
        client->begin(number, std::move(words), std::move(observer), std::move(isSilent));
        return true;
    });
    return std::make_unique<OrderedSession>(helper_->orders(), client_, number, std::move(isSilent));
}

pid_t RecogniserProcess::helper() const { return helper_->process(); }

fs::path RecogniserProcess::defaultProgram() {
    std::error_code failure;
    const auto beside = fs::read_symlink("/proc/self/exe", failure).parent_path() / "querlin-recogniser";
    return fs::exists(beside, failure) ? beside : fs::path(QUERLIN_RECOGNISER);
}

} // namespace querlin
