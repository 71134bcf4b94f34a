#pragma once

#include <string_view>

/// The names by which the product is known to files, folders and the desktop.
namespace querlin::Product {

inline constexpr std::string_view name = "Querlin";
/// As the build names it.
inline constexpr std::string_view version = QUERLIN_VERSION;
inline constexpr std::string_view applicationId = "local.mandolan.querlin";
/// The preferences domain of the earlier product, read once.
inline constexpr std::string_view legacyDomain = "local.tiktalon";

} // namespace querlin::Product
