#include "set/demo/DemoShow.h"

namespace epgset {
namespace {

using enum DemoKind;

constexpr DemoShow shows[] = {
    {News, "The Headlines", "The day's stories in brief, and the one that will lead tomorrow."},
    {News, "News in Depth", "One story, three reporters and the people it is about."},
    {News, "Around the Regions", "What happened between the coast and the hills."},

    {Weather, "Weather Watch", "Wind, rain and sun for the next five days. ☀️"},

    {Business, "Business Brief", "Prices, wages and the figures behind them."},
    {Business, "Shop Floor", "A working day in a company that few have heard of."},

    {Report, "World Report", "Correspondents on three continents follow one question."},
    {Report, "Letters from Abroad", "A look at everyday life far away."},
    {Report, "The Evidence", "What the documents say, and who did not want them read."},

    {Talk, "Across the Table", "Two guests who disagree, and an hour glass."},
    {Talk, "The Long Question", "A conversation that takes its time."},
    {Talk, "Behind the Reel", "A director and an editor talk through one scene."},

    {Magazine, "Morning Call", "Guests, recipes and the papers."},
    {Magazine, "Kitchen Table", "Soup from what the garden gives, and bread that needs no kneading. 🍞"},
    {Magazine, "The Mending Hour", "A clock, a chair and a grandmother's radio are brought back to life."},
    {Magazine, "House & Garden Clinic", "Viewers bring their broken fences and their sickly pears."},

    {Series, "Hollin Street", "The bakery changes hands, and Mr Oram is not told."},
    {Series, "Doctor Amber Quill", "A fever that nobody else on the island seems to notice."},
    {Series, "The Tidewatch Files", "A boat comes back without its crew. Inspector Lark counts the lamps."},
    {Series, "Bell & Barrow", "Two solicitors, one desk and a will with eleven pages too many."},
    {Series, "The Saltmarsh", "Ada finds the old survey map, and her brother finds Ada."},

    {Film, "Salt & Thunder", "A lighthouse keeper and a deserter share one winter. Drama."},
    {Film, "The Ferryman of Low Sound",
     "He has crossed the strait ten thousand times, but never by night. Thriller."},
    {Film, "Eleven Lamps", "A town agrees to keep its lights on for a stranger. Fairy tale for grown-ups."},
    {Film, "The Cartographer's Debt", "A map maker is paid to leave out an island. Adventure."},
    {Film, "Miss Pell Takes the Train",
     "A retired teacher, a wrong ticket and a very long platform. Comedy."},
    {Film, "Paper Harbour", "Three forgers plan their last passport. Crime."},
    {Film, "Nightshift at the Observatory",
     "The telescope sees it first. The caretaker sees it second. Science fiction."},
    {Film, "The Quiet Orchard", "Two families and the wall between their trees. Drama."},
    {Film, "Last Tram to Hollin", "Everyone aboard has a reason to stay on. Mystery."},
    {Film, "A Winter in Orrin", "The orchestra is snowed in with the wrong score. Romance."},
    {Film, "Dust and Bugles", "A brass band crosses the dry plain on foot. Western."},

    {Short, "Small Reels", "Short films by directors to watch."},
    {Short, "One Minute, One Place", "A street, a field, a stairwell: nothing happens, beautifully."},

    {Documentary, "The Slow River", "From the spring to the sea at walking pace."},
    {Documentary, "Under the Ice Shelf", "A robot, a hole and four hundred metres of cable. 🧊"},
    {Documentary, "The Bee Year", "Twelve months with one hive and its keeper. 🐝"},
    {Documentary, "Bridges of Stone and Steel", "How a span is measured before it can be built."},
    {Documentary, "Maps & Makers", "The people who drew the coasts they had never seen."},
    {Documentary, "Night Skies", "Where it is still dark enough to see the Milky Way."},
    {Documentary, "The Salt Road", "A caravan route and the families who live along it."},

    {Children, "Pip's Playroom", "Pip builds a castle out of boxes, and somebody has moved in."},
    {Children, "Captain Thistle's Log", "A message in a bottle, and the bottle is very big."},
    {Children, "Number Garden", "Seven beans, three pots: how many are left over?"},
    {Children, "Ask a Badger", "Why is the sky blue, and who put it there?"},

    {Cartoon, "Rocket Radish", "The smallest vegetable wants to see the moon. 🚀🌙"},
    {Cartoon, "The Umbrella Twins", "It has not rained for a week. The twins investigate. ☂️"},
    {Cartoon, "Moss and Pebble", "A snail moves house, which takes all day. 🐌"},
    {Cartoon, "Little Big Barge", "The lock is shut and the cheese must not get warm."},
    {Cartoon, "Professor Teapot", "Steam, cogs and a cup of trouble. 🫖"},

    {Music, "Chart Room", "What people listen to this week, from thirty to one."},
    {Music, "Vinyl Hour", "Both sides of a record that deserves another turn."},
    {Music, "Late Jazz", "Trios, quartets and a double bass that stays up late. 🎷"},
    {Music, "Songs from the Quay", "Folk songs and the stories they came with."},

    {Concert, "The Orrin Philharmonic", "A symphony in four movements, recorded in the old grain hall."},
    {Concert, "Live from the Boathouse", "Two bands, one small stage and the tide coming in."},
    {Concert, "Opera Night: The Glass Orchard", "The gardener's aria and what became of it."},

    {Sport, "Sport Today", "Results, tables and the goal of the day."},
    {Sport, "Training Ground", "How a sprinter learns to start."},
    {Sport, "The Back Row", "Three former players look again at Saturday's decisions."},

    {Match, "Football: Orrin Rovers v. Hollin Town", "The derby, with both keepers back from injury. ⚽"},
    {Match, "Cycling: Tour of the Three Lakes", "The mountain stage with two climbs above the tree line. 🚴"},
    {Match, "Athletics: Lowland Games", "Finals on the track, qualification in the field."},
    {Match, "Tennis: Harbour Open", "The second semi-final on the centre court. 🎾"},
    {Match, "Rowing: The Long Mile", "Eights against the stream."},
    {Match, "Skiing: Carrow Downhill", "Sixty-four starters and one icy bend."},
};

}  // namespace

std::span<const DemoShow> englishShows() {
    return shows;
}

}  // namespace epgset
