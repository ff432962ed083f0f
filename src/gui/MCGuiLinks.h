#pragma once

// Addresses the Help menu opens in the user's browser.
namespace MCGuiLinks {
inline constexpr char onlineGuide[] = "https://kestrane.org/docs/guide.html";
inline constexpr char onlineTroubleshooting[] = "https://kestrane.org/docs/troubleshooting.html";
} // namespace MCGuiLinks
