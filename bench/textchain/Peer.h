#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// The peer: the sources of the text chain compiled a second time, in the namespace `querlin_icu`, with
/// IcuPattern.cpp in place of foundation/Pattern.cpp. Both chains are the same but for how regular
/// expressions are carried out.
namespace icu_peer {

/// All stages but the model.
std::string runPipeline(std::string_view transcript, bool appliesCommands, bool isCompact);

/// Whether its matchers are kept from use to use, as only a program of one thread could; otherwise each use
/// of a pattern makes one, as ICU's manual has it.
void keepMatchers(bool keeps);

/// All expressions that it has compiled so far, and whether they ignore the case.
std::vector<std::pair<std::string, bool>> compiledExpressions();

} // namespace icu_peer
