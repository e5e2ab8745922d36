#include "Programs/CommandLine/CurrentClassification.h"

#include "Kestrio/Shell/ClassificationSettings.h"
#include "Programs/Agent/HostClassification.h"
#include "Programs/CommandLine/Places.h"

namespace kestrio {

Classification currentClassification(const Locations& places, const Clock& clock) {
    const auto store = openSettings(places);
    ClassificationSettings settings(*store, hostHint(processEnvironment, clock));
    return {settings.categorizer().snapshot(), settings.projectRules().rules()};
}

} // namespace kestrio
