#include "platform/pocketsphinx/engine/SphinxDecoder.h"

#include "foundation/Release.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iterator>
#include <utility>

#include <pocketsphinx.h>
#include <sphinxbase/err.h>
#include <sphinxbase/ngram_model.h>
#include <sys/mman.h>
#include <unistd.h>

namespace querlin {

namespace fs = std::filesystem;

namespace {

using Configuration = std::unique_ptr<cmd_ln_t, Release<cmd_ln_free_r>>;
using Decoder = std::unique_ptr<ps_decoder_t, Release<ps_free>>;
using LanguageModel = std::unique_ptr<ngram_model_t, Release<ngram_model_free>>;

/// What the library has taken from the C heap.
struct Freed {
    void operator()(char* text) const { std::free(text); } // NOLINT(*-no-malloc, *-owning-memory)
};

/// The library raises it to the power of the language weight: this is a share of about a tenth.
constexpr float weightOfContext = 1e-6F;

std::expected<std::vector<std::string>, std::string> optionsOf(const fs::path& folder) {
    const auto content = Files::read(folder / SphinxDecoder::optionsFile, 64U << 10U);
    if (!content) {
        return std::unexpected("Das Modell hat keine lesbaren Einstellungen: " +
                               content.error().description());
    }
    // With "yes" the library takes "Alter" and "alter" for one word, whatever its own help says.
    std::vector<std::string> options = {"querlin-recogniser", "-dictcase", "no"};
    const auto add = [&](std::string_view name, std::string value) {
        options.push_back("-" + std::string(name));
        options.push_back(std::move(value));
    };
    add("hmm", folder);
    add("lm", folder / SphinxDecoder::languageModelFile);
    add("dict", folder / SphinxDecoder::dictionaryFile);
    std::string_view rest = *content;
    while (!rest.empty()) {
        const auto line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(rest.size(), line.size() + 1));
        const auto blank = line.find(' ');
        if (blank != std::string_view::npos) add(line.substr(0, blank), std::string(line.substr(blank + 1)));
    }
    return options;
}

Configuration configurationOf(std::vector<std::string>& options) {
    std::vector<char*> arguments;
    arguments.reserve(options.size());
    for (auto& option : options) arguments.push_back(option.data());
    constexpr int isStrict = 1;
    return Configuration(::cmd_ln_parse_r(nullptr, ::ps_args(), static_cast<int>(arguments.size()),
                                          arguments.data(), isStrict));
}

/// A file in memory alone: names that a user dictates don't belong on the disk.
class MemoryFile {
public:
    explicit MemoryFile(std::string_view content) :
        descriptor_(::memfd_create("woerter", MFD_CLOEXEC)),
        isWhole_(::write(descriptor_, content.data(), content.size()) ==
                 static_cast<ssize_t>(content.size())) {}
    ~MemoryFile() {
        if (descriptor_ >= 0) ::close(descriptor_);
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    bool isWhole() const { return isWhole_; }
    std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

private:
    int descriptor_;
    bool isWhole_;
};

} // namespace

struct SphinxDecoder::Handle {
    Configuration configuration;
    Decoder decoder; // Goes first.
};

std::expected<std::unique_ptr<SphinxDecoder>, std::string> SphinxDecoder::open(const fs::path& folder) {
    ::err_set_logfp(nullptr);
    auto options = optionsOf(folder);
    if (!options) return std::unexpected(std::move(options.error()));
    auto handle = std::make_unique<Handle>();
    handle->configuration = configurationOf(*options);
    if (!handle->configuration) return std::unexpected("Das Modell hat unbekannte Einstellungen.");
    handle->decoder.reset(::ps_init(handle->configuration.get()));
    if (!handle->decoder) return std::unexpected("Das Modell ist unvollständig oder beschädigt.");
    return std::unique_ptr<SphinxDecoder>(new SphinxDecoder(folder, std::move(handle)));
}

SphinxDecoder::SphinxDecoder(fs::path folder, std::unique_ptr<Handle> handle) :
    folder_(std::move(folder)), handle_(std::move(handle)) {}
SphinxDecoder::~SphinxDecoder() = default;

bool SphinxDecoder::knows(const std::string& word) const {
    const std::unique_ptr<char, Freed> phones(::ps_lookup_word(handle_->decoder.get(), word.c_str()));
    return phones != nullptr;
}

bool SphinxDecoder::favour(const std::vector<ContextModel::Phrase>& phrases,
                           const Pronunciations& pronunciations) {
    constexpr int later = 0;
    for (const auto& word : ContextModel::wordsOf(phrases)) {
        const std::string phones(pronunciations.of(word));
        if (!phones.empty() && !knows(word))
            ::ps_add_word(handle_->decoder.get(), word.c_str(), phones.c_str(), later);
    }
    std::vector<ContextModel::Phrase> known;
    std::ranges::copy_if(phrases, std::back_inserter(known), [this](const auto& phrase) {
        return std::ranges::all_of(phrase, [this](const auto& word) { return knows(word); });
    });
    return known.empty() || mixIn(ContextModel::arpa(known));
}

/// The one way that works: to add words with `update`, or to a language model, crashes. The base model is
/// read anew, because the decoder keeps the one it has.
bool SphinxDecoder::mixIn(std::string_view contextModel) {
    const MemoryFile file(contextModel);
    if (!file.isWhole()) return false;
    auto* const decoder = handle_->decoder.get();
    auto* const configuration = handle_->configuration.get();
    const auto read = [&](const std::string& path, ngram_file_type_t kind) {
        return LanguageModel(
            ::ngram_model_read(configuration, path.c_str(), kind, ::ps_get_logmath(decoder)));
    };
    const auto base = read(folder_ / languageModelFile, NGRAM_AUTO);
    const auto context = read(file.path(), NGRAM_ARPA);
    if (!base || !context) return false;

    std::array models = {base.get(), context.get()}; // The mixture holds them too.
    std::array<std::string, 2> names = {"base", "context"};
    std::array writableNames = {names[0].data(), names[1].data()};
    std::array readableNames = {names[0].c_str(), names[1].c_str()};
    const std::array<float, 2> weights = {1 - weightOfContext, weightOfContext};
    const LanguageModel mixture(::ngram_model_set_init(configuration, models.data(), writableNames.data(),
                                                       weights.data(), models.size()));
    if (!mixture || !::ngram_model_set_interp(mixture.get(), readableNames.data(), weights.data()))
        return false;
    constexpr auto searchName = "mit-woertern";
    return ::ps_set_lm(decoder, searchName, mixture.get()) == 0 && ::ps_set_search(decoder, searchName) == 0;
}

void SphinxDecoder::beginStream() { ::ps_start_stream(handle_->decoder.get()); }
void SphinxDecoder::beginUtterance() { ::ps_start_utt(handle_->decoder.get()); }

void SphinxDecoder::process(std::span<const std::int16_t> samples) {
    constexpr int no = 0;
    ::ps_process_raw(handle_->decoder.get(), samples.data(), samples.size(), no, no);
}

bool SphinxDecoder::isHearingSpeech() const { return ::ps_get_in_speech(handle_->decoder.get()) != 0; }

std::string SphinxDecoder::text() const {
    const char* const text = ::ps_get_hyp(handle_->decoder.get(), nullptr);
    return text ? text : "";
}

void SphinxDecoder::endUtterance() { ::ps_end_utt(handle_->decoder.get()); }

} // namespace querlin
