-- Books a programme and cancels it, in turns. One connection a thread; the file that the first argument names
-- holds a programme for each. Says as one line of JSON what was seen, with the medians of both apart.
local ffi = require("ffi")
ffi.cdef [[
    struct epg_time { long seconds; long nanoseconds; };
    int clock_gettime(int clock, struct epg_time *time);
]]
local monotonic = 1
local threads = {}

local function microseconds()
    local time = ffi.new("struct epg_time")
    ffi.C.clock_gettime(monotonic, time)
    return tonumber(time.seconds) * 1e6 + tonumber(time.nanoseconds) / 1e3
end

function setup(thread)
    table.insert(threads, thread)
    thread:set("number", #threads)
end

function init(arguments)
    local line = 0
    for programme in io.lines(arguments[1]) do
        line = line + 1
        if line == number then path = "/ws/epg2/programs/" .. programme .. "/schedule" end
    end
    booking = false
    bookTimes, cancelTimes = {}, {}
    failed = 0
end

function request()
    booking = not booking
    begun = microseconds()
    if booking then return wrk.format("POST", path, nil, '{"status":"RECORD"}') end
    return wrk.format("DELETE", path)
end

function response(status)
    local times = booking and bookTimes or cancelTimes
    times[#times + 1] = microseconds() - begun
    if status ~= (booking and 201 or 200) then failed = failed + 1 end
end

local function median(name)
    local all = {}
    for _, thread in ipairs(threads) do
        for _, time in ipairs(thread:get(name)) do all[#all + 1] = time end
    end
    table.sort(all)
    return (all[math.ceil(#all / 2)] or 0) / 1e3
end

function done(summary, latency, requests)
    local errors = summary.errors
    local count = errors.connect + errors.read + errors.write + errors.timeout
    for _, thread in ipairs(threads) do count = count + thread:get("failed") end
    io.write(string.format('RESULT {"requests":%d,"duration_us":%d,"bytes":%d,"median_us":%d,"p99_us":%d,' ..
        '"errors":%d,"book_median_ms":%.4f,"cancel_median_ms":%.4f}\n',
        summary.requests, summary.duration, summary.bytes, latency:percentile(50), latency:percentile(99), count,
        median("bookTimes"), median("cancelTimes")))
end
