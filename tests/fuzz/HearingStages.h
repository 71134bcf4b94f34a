#pragma once

#include <string_view>

/// What the recognition reads from other processes and from users' files, under random bytes.
namespace querlin::HearingStage {

void frames(std::string_view bytes, unsigned options);
void model(std::string_view bytes, unsigned options);

} // namespace querlin::HearingStage
