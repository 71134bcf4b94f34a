#include "platform/recogniser/RecogniserProcess.h"

#include "platform/recogniser/HelperLoop.h"

#include <utility>

namespace querlin {

namespace fs = std::filesystem;

RecogniserSession::RecogniserSession(std::shared_ptr<Mailbox<RecogniserOrder>> mailbox, std::uint32_t number,
                                     std::shared_ptr<std::atomic<bool>> isSilent) :
    mailbox_(std::move(mailbox)), number_(number), isSilent_(std::move(isSilent)) {}

void RecogniserSession::append(AudioFormat format, std::vector<float> samples) {
    mailbox_->send({number_, RecogniserOrder::Sound{format, std::move(samples)}});
}

void RecogniserSession::finish() { mailbox_->send({number_, RecogniserOrder::Finish{}}); }

void RecogniserSession::cancel() {
    if (!isSilent_->exchange(true)) mailbox_->send({number_, RecogniserOrder::Cancel{}});
}

RecogniserProcess::RecogniserProcess(Setup setup) :
    mailbox_(std::make_shared<Mailbox<RecogniserOrder>>()),
    thread_([loop = std::make_unique<HelperLoop>(std::move(setup), mailbox_, helper_)] { loop->run(); }) {}

RecogniserProcess::~RecogniserProcess() {
    mailbox_->send({0, RecogniserOrder::Quit{}});
    if (thread_.get_id() == std::this_thread::get_id()) thread_.detach();
}

void RecogniserProcess::preload(std::vector<std::string> words) {
    mailbox_->send({0, RecogniserOrder::Prepare{std::move(words)}});
}

std::unique_ptr<RecogniserSession> RecogniserProcess::begin(std::vector<std::string> words,
                                                            RecognitionObserver observer) {
    const auto number = ++lastNumber_;
    auto isSilent = std::make_shared<std::atomic<bool>>(false);
    mailbox_->send({number, RecogniserOrder::Begin{std::move(words), std::move(observer), isSilent}});
    return std::make_unique<RecogniserSession>(mailbox_, number, std::move(isSilent));
}

fs::path RecogniserProcess::defaultProgram() {
    std::error_code failure;
    const auto beside = fs::read_symlink("/proc/self/exe", failure).parent_path() / "querlin-recogniser";
    return fs::exists(beside, failure) ? beside : fs::path(QUERLIN_RECOGNISER);
}

} // namespace querlin
