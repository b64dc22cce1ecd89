#!/bin/sh
# Lists tonight's films and books one, with curl and jq. The service does not tell films from other
# programmes: a film is taken to be what starts between 18:00 and midnight and is long.
set -eu

usage() {
    cat <<'END'
tonight.sh [--base URL] [--book N] [--status VIEW|RECORD] [--replace] [--minutes N]

--base URL    the set's URL (default: http://127.0.0.1:8080)
--book N      book this one of the list and do not ask
--status      VIEW to be reminded of it (the default), RECORD to record it
--replace     replace what is booked at that time
--minutes N   how long a film is at least (default: 80)

Exit status: 0 done, 1 not booked, 2 the set cannot be asked.
END
}

base=http://127.0.0.1:8080 book='' status=VIEW force=false minutes=80 asks=yes
while [ $# -gt 0 ]; do
    case $1 in
        --help) usage && exit 0 ;;
        --replace) force=true && shift ;;
        --base | --book | --status | --minutes)
            [ $# -gt 1 ] || { usage >&2 && exit 2; }
            case $1 in
                --base) base=${2%/} ;;
                --book) book=$2 asks=no ;;
                --status) status=$2 ;;
                --minutes) minutes=$2 ;;
            esac
            shift 2
            ;;
        *) usage >&2 && exit 2 ;;
    esac
done

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# ask CURL-OPTION...: sets `code` to the status of the answer and leaves its body in the file `answer`.
ask() {
    : >"$folder/answer"
    code=$(curl --silent --show-error --max-time 30 --output "$folder/answer" --write-out '%{http_code}' "$@") || exit 2
}

# book_film FORCE: books the film whose programme is in the file `film`.
book_film() {
    ask --data "{\"status\":\"$status\",\"force\":\"$1\"}" \
        "$base/ws/epg2/programs/$(jq -r .id "$folder/film")/schedule"
}

# The set's clock, or this machine's where the set does not say.
ask "$base/set/status"
if [ "$code" = 200 ]; then
    clock=$(jq -r .clock "$folder/answer")
else
    clock=$(date -u +%Y-%m-%dT%H:%M:%S+00:00)
fi
day=${clock%%T*} zone=$(printf %s "$clock" | cut -c 20-)
evening=$day''T18:00:00$zone
[ "$(printf %s "$clock" | cut -c 12-13)" -lt 18 ] || evening=$clock
midnight=$(jq -nr --arg day "$day" '"\($day)T00:00:00Z" | fromdateiso8601 + 86400 | todate[0:19]')

# Page by page, as many as the set says there are.
index=0 total=1
: >"$folder/programmes"
while [ "$index" -lt "$total" ]; do
    ask --get "$base/ws/epg2/programs" --data-urlencode "start=$evening" \
        --data-urlencode "end=${midnight%%T*}T06:00:00$zone" --data service_type=TV \
        --data sort=start --data sort_order=ascend --data items_max=200 --data "items_start_index=$index"
    case $code in
        200) ;;
        204) break ;;
        *) echo "$base: the list of programmes was answered $code" >&2 && exit 2 ;;
    esac
    total=$(jq .items_total "$folder/answer")
    index=$((index + 200))
    jq -c '.items[]' "$folder/answer" >>"$folder/programmes"
done

# Both times carry the same offset, so their difference needs none.
jq -s -c --arg midnight "$midnight" --argjson minutes "$minutes" '
    def seconds: "\(.[0:19])Z" | fromdateiso8601;
    sort_by(.start, .id)[]
    | select(.start[0:19] < $midnight and (.end | seconds) - (.start | seconds) >= $minutes * 60)
' "$folder/programmes" >"$folder/films"

line='"\(.start[11:16])-\(.end[11:16])  \(.name // "booked by hand") (\(.channel_name))"'
count=$(wc -l <"$folder/films")
[ "$count" -gt 0 ] || { echo "No film tonight." && exit 1; }
jq -r "$line" "$folder/films" | awk '{ printf "%3d  %s\n", NR, $0 }'

if [ $asks = yes ]; then
    printf 'Which one to book (none: just Enter)? '
    read -r book || true
fi
[ -n "$book" ] || exit 0
case $book in
    *[!0-9]* | 0*) known=no ;;
    *) [ "$book" -le "$count" ] && known=yes || known=no ;;
esac
[ "$known" = yes ] || { echo "There is no number $book in the list." && exit 1; }
sed -n "${book}p" "$folder/films" >"$folder/film"

book_film $force
case $code in
    201) echo "Booked: $(jq -r "$line" "$folder/film")" && exit 0 ;;
    200)
        [ "$status" = VIEW ] || { echo "The set did not book it." && exit 1; }
        echo "It is on now: the set shows $(jq -r .name "$folder/film")." && exit 0
        ;;
    409)
        book_film check_overlap
        echo "Not booked. In the way:"
        jq -r ".items[] | \"  \" + $line" "$folder/answer"
        echo "With --replace it is booked in its place."
        ;;
    403) echo "Not booked: the set cannot record now." ;;
    404) echo "Not booked: the programme is over, or on now, which cannot be recorded." ;;
    *) echo "Not booked: the set answered $code." ;;
esac
exit 1
