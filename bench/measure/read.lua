-- Says as one line of JSON what wrk has seen.
done = function(summary, latency, requests)
    local errors = summary.errors
    io.write(string.format('RESULT {"requests":%d,"duration_us":%d,"bytes":%d,"median_us":%d,"p99_us":%d,"errors":%d}\n',
        summary.requests, summary.duration, summary.bytes, latency:percentile(50), latency:percentile(99),
        errors.connect + errors.read + errors.write + errors.status + errors.timeout))
end
