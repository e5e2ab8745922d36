// What turns the reports of the system and of the browsers into the stable texts that sessions continue by and reports
// group by: two titles or addresses that a person would call the same come out identical.
//
// Pure functions, callable from any thread; none can fail other than by answering nothing. Text is UTF-8, of any
// length.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kestrio {

namespace TitleCleaner {

/// Longer titles are cut to so many characters, as a reader counts them.
inline constexpr std::size_t longestTitle = 400;

/// The title without invisible marks, without white space around it, without the marks of modified documents and busy
/// terminals in front, and without one count of unread things, as in "(3) " or "(99+) ". May be empty.
std::string clean(std::string_view title);

/// The title without one signature of its application at the end, as in " - Firefox". The application's name and the
/// other names under which it is known to sign are tried. A title that is nothing but a signature stays.
std::string removingAppName(std::string_view title, std::string_view appName);

} // namespace TitleCleaner

namespace URLTools {

/// The site that a web address belongs to: its host in lower case without a leading "www.", "m." or "mobile."; for a
/// server on this machine with its port. Absent for anything but http and https, and without a host.
std::optional<std::string> domain(std::string_view url);

} // namespace URLTools

/// The one video site whose addresses reports understand.
namespace YouTube {

/// Of a domain as `URLTools::domain` gives it; the music site does not count.
bool isYouTube(const std::optional<std::string>& domain);

/// The identifier of the video that the address shows, short links and shorts included. Never empty; its form is not
/// checked.
std::optional<std::string> videoID(std::string_view url);

/// What the address of a results page was searched for. The caller has made sure of the site. Never empty.
std::optional<std::string> searchQuery(std::string_view url);

/// The title without the site's signature and without blanks around it.
std::string cleanTitle(std::string_view title);

/// The address that stands for the video in reports. The identifier is appended as it is.
std::string canonicalURL(std::string_view id, bool isShort);

} // namespace YouTube

} // namespace kestrio
