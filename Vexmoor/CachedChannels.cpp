#include "Vexmoor/CachedChannels.h"

#include <set>
#include <utility>

#include "Vexmoor/ChannelWalk.h"
#include "Vexmoor/EpgSQLPluginVexmoorUtil.h"

CachedChannels::CachedChannels(const std::vector<Number>& numbers) : m_found(numbers.size(), nullptr) {
    std::set<int> modes;
    for (const Number& number : numbers)
        if (modes.insert(number.tvmode).second) walk(number.tvmode, numbers);
}

void CachedChannels::walk(int tvmode, const std::vector<Number>& numbers) {
    std::vector<std::size_t> wanted;
    for (std::size_t i = 0; i < numbers.size(); ++i)
        if (numbers[i].tvmode == tvmode) wanted.push_back(i);
    int count = 0;
    const ChannelKeyList keys(t_get_cached_channel_key_list(tvmode, &count));
    if (!keys) return;
    const auto take = [&](std::unique_ptr<TCChannel>& channel) {
        TCChannel* const met = channel.get();
        const int major = met->Major();
        const int minor = met->Minor();
        const auto left = std::erase_if(wanted, [&](std::size_t place) {
            const Number& number = numbers[place];
            const bool fits = isNumberAskedFor(major, minor, number.major, number.minor);
            if (fits) m_found[place] = met;
            return fits;
        });
        if (left != 0) m_channels.push_back(std::move(channel));
        return wanted.empty();
    };
    visitDigitalChannels(*keys, take, [] { return true; });
}
