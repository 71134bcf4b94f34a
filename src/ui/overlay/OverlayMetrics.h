#pragma once

/// The measures of the overlay, in logical pixels.
namespace querlin::OverlayMetrics {

inline constexpr int width = 440;
/// Of the status row alone.
inline constexpr int compactHeight = 58;
inline constexpr int liveTextHeight = 54;
/// With the live text: the row, a line, the text with 8 above and 12 below.
inline constexpr int expandedHeight = 133;
inline constexpr int cornerRadius = 14;
/// From the lower edge of the screen's free area.
inline constexpr int bottomInset = 110;

} // namespace querlin::OverlayMetrics
