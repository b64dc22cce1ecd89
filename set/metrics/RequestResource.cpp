#include "set/metrics/RequestResource.h"

#include <algorithm>
#include <array>

namespace epgset {
namespace {

constexpr const char* other = "other";

/// The resources of the service and of the set; "{id}" stands for any one segment.
constexpr std::array resources{
    "/",
    "/ws/epg2",
    "/ws/epg2/channels",
    "/ws/epg2/channels/{id}",
    "/ws/epg2/channels/{id}/programs",
    "/ws/epg2/programs",
    "/ws/epg2/programs/{id}",
    "/ws/epg2/programs/{id}/detail",
    "/ws/epg2/programs/{id}/schedule",
    "/ws/epg2/schedules",
    "/ws/epg2/schedules/{id}",
    "/ws/epg2/recordingAvailable",
    "/ws/epg2/recordingSpec",
    "/ws/epg2/antennas",
    "/ws/epg2/stopRecording",
    "/ws/epg2/UPnP_Info",
    "/set/status",
    "/set/events",
    "/set/metrics",
    "/set/openapi.yaml",
    "/set/api",
};

constexpr std::array methods{"GET", "HEAD", "POST", "PUT", "DELETE", "OPTIONS", "PATCH"};

/// Whether the segments are those of a resource's path.
bool match(std::string_view resource, const std::vector<std::string>& segments) {
    for (const std::string& segment : segments) {
        if (resource.empty() || resource[0] != '/') return false;
        resource.remove_prefix(1);
        const std::string_view wanted = resource.substr(0, resource.find('/'));
        if (wanted != "{id}" && wanted != segment) return false;
        resource.remove_prefix(wanted.size());
    }
    return resource.empty() || resource == "/";
}

}  // namespace

std::string resourceOf(const std::vector<std::string>& segments) {
    const auto* const found = std::ranges::find_if(
        resources, [&segments](const char* resource) { return match(resource, segments); });
    return found == resources.end() ? other : *found;
}

std::string methodOf(std::string_view method) {
    const auto* const found = std::ranges::find(methods, method);
    return found == methods.end() ? other : *found;
}

}  // namespace epgset
