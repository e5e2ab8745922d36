#include "Fuzz/Fuzz.h"
#include "Kestrio/Base/Text.h"
#include "Kestrio/Classification/ProjectDetection.h"

/// Whatever a title holds, a project's name is short, trimmed, and no longer than the title.
void kestrio::fuzz(std::string_view input) {
    const ProjectDetector detector({"alice",
                                    "/home/alice",
                                    "walrus",
                                    {{"brackets", TitleFamily::folderInBrackets},
                                     {"behind", TitleFamily::folderBehindFile},
                                     {"session", TitleFamily::sessionFirst}}});
    for (const char* bundleID : {"com.microsoft.VSCode", "com.apple.dt.Xcode", "com.sublimetext.4", "io.alacritty",
                                 "brackets", "behind", "session"}) {
        const auto reading = detector.reading(bundleID, "Code", input);
        if (!reading.project)
            continue;
        require(reading.read && reading.project->size() <= reading.read->size());
        require(!reading.project->empty() && text::characterCount(*reading.project) <= 80);
        require(text::trimmedOfBlanks(*reading.project) == *reading.project);
    }
}
