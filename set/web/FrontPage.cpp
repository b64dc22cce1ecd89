#include "set/web/FrontPage.h"

namespace epgset {

std::string frontPage() {
    return R"(<!DOCTYPE html>
<html lang="en">
<head><meta charset="utf-8"><title>Programme guide</title></head>
<body>
<h1>Programme guide</h1>
<ul>
<li><a href="/ws/epg2/channels">/ws/epg2/channels</a>: the channels</li>
<li><a href="/ws/epg2/programs">/ws/epg2/programs</a>: the programmes</li>
<li><a href="/ws/epg2/schedules">/ws/epg2/schedules</a>: reminders and recordings</li>
<li><a href="/ws/epg2/antennas">/ws/epg2/antennas</a>: the antenna types</li>
<li><a href="/set/status">/set/status</a>: the state of the set</li>
</ul>
</body>
</html>
)";
}

}  // namespace epgset
