#pragma once

/// Measures of the overlay, in logical pixels.
namespace querlin::OverlayMetrics {

inline constexpr int width = 440;
/// Height of the status row alone.
inline constexpr int compactHeight = 58;
inline constexpr int liveTextHeight = 54;
/// Height with the live text: status row, divider, text with margins of 8 above and 12 below.
inline constexpr int expandedHeight = 133;
inline constexpr int cornerRadius = 14;
/// Distance from the lower edge of the screen's work area.
inline constexpr int bottomInset = 110;

} // namespace querlin::OverlayMetrics
