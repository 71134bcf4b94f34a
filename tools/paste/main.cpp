// Pastes a text into the focused field, as the program would, and reports what is known about it: the
// application, the kind of field, the outcome, the times.

#include "shared/ShownLog.h"

#include "desktop/ClipboardInserter.h"
#include "desktop/ContextDetector.h"
#include "foundation/RunLoop.h"
#include "foundation/TaskGroup.h"
#include "foundation/ThreadPool.h"
#include "foundation/Waiting.h"
#include "platform/atspi/AtspiAccessibility.h"
#include "platform/x11/X11Clipboard.h"
#include "platform/x11/X11PasteKey.h"
#include "platform/x11/X11Workspace.h"

#include <charconv>
#include <cstdlib>

#include <fmt/format.h>

namespace querlin {
namespace {

constexpr std::string_view usage = R"(paste [--in=SEKUNDEN] TEXT
  Fügt den Text dort ein, wo die Schreibmarke steht, und gibt die Zwischenablage zurück. Mit --in (sonst 3) ist
  vorher Zeit, in das Feld zu klicken.
)";

struct Options {
    std::string text;
    int delayInSeconds = 3;
};

std::optional<Options> parse(int count, char** arguments) {
    Options options;
    for (int i = 1; i < count; ++i) {
        const std::string_view argument = arguments[i];
        if (argument.starts_with("--in=")) {
            const auto number = argument.substr(5);
            const auto [end, fault] =
                std::from_chars(number.data(), number.data() + number.size(), options.delayInSeconds);
            if (fault != std::errc() || end != number.data() + number.size() || options.delayInSeconds < 0)
                return std::nullopt;
        } else if (options.text.empty() && !argument.starts_with("--")) {
            options.text = argument;
        } else {
            return std::nullopt;
        }
    }
    return options.text.empty() ? std::nullopt : std::optional(options);
}

/// Everything counts as permitted in this developer's program.
class OpenAccess final : public SystemAccess {
public:
    AuthorizationStatus microphoneStatus() override { return AuthorizationStatus::authorized; }
    AuthorizationStatus speechStatus() override { return AuthorizationStatus::authorized; }
    bool isProcessTrusted() override { return true; }
    void requestMicrophone(Answer answer) override { answer(true); }
    void requestSpeech(Answer answer) override { answer(true); }
    bool requestTrust() override { return true; }
    void openSettings(std::string_view) override {}
};

std::string_view inWords(const std::expected<TextInserter::Outcome, InsertError>& outcome) {
    if (!outcome) return description(outcome.error());
    switch (*outcome) {
    case TextInserter::Outcome::inserted:
        return "eingefügt";
    case TextInserter::Outcome::unconfirmed:
        return "eingefügt, aber das Feld gibt keine Auskunft";
    case TextInserter::Outcome::notInserted:
        return "nicht angekommen; der Text liegt in der Zwischenablage";
    }
    return {};
}

class Pasting {
public:
    int run(Options options) {
        tasks_.start(paste(std::move(options)));
        loop_.run();
        return result_;
    }

private:
    Task<> paste(Options options) {
        for (int left = options.delayInSeconds; left > 0; --left) {
            fmt::print("{} …\n", left);
            co_await sleepFor(loop_, std::chrono::seconds(1));
        }
        const auto begun = clock_.instant();
        const auto context = detector_.capture();
        const auto looked = clock_.instant();
        const auto outcome = co_await inserter_.insert(std::move(options.text));
        fmt::print("Ziel:     {}  ({:.1f} ms)\nErgebnis: {}  ({:.2f} s)\n", context.summary(),
                   1000 * inSeconds(looked - begun), inWords(outcome), inSeconds(clock_.instant() - looked));
        result_ = outcome && *outcome != TextInserter::Outcome::notInserted ? EXIT_SUCCESS : EXIT_FAILURE;
        loop_.quit();
    }

    RunLoop loop_;
    SystemClock clock_;
    ThreadPool pool_{1};
    OpenAccess access_;
    X11Workspace workspace_;
    AtspiAccessibility accessibility_{[this]() -> std::optional<std::int32_t> {
        const auto front = workspace_.frontmostApplication();
        return front ? std::optional(front->processIdentifier) : std::nullopt;
    }};
    PermissionsManager permissions_{loop_, access_};
    ContextDetector detector_{permissions_, accessibility_, workspace_};
    X11Clipboard clipboard_{loop_};
    X11PasteKey key_{loop_};
    ClipboardInserter inserter_{
        {Runtime{loop_, clock_, pool_}, permissions_, accessibility_, workspace_, clipboard_, key_}};
    TaskGroup tasks_;
    int result_ = EXIT_FAILURE;
};

} // namespace
} // namespace querlin

int main(int count, char** arguments) {
    auto options = querlin::parse(count, arguments);
    if (!options) {
        fmt::print(stderr, "{}", querlin::usage);
        return EXIT_FAILURE;
    }
    querlin::ShownLog log;
    const querlin::DiagnosticsLog::Installation installation(log);
    return querlin::Pasting().run(std::move(*options));
}
