#include "set/demo/DemoShow.h"

namespace epgset {
namespace {

using enum DemoKind;

constexpr DemoShow french[] = {
    {News, "Le Journal", "L'actualité du jour, de près et de loin."},
    {News, "Édition du soir", "Le grand dossier de la rédaction et la météo."},
    {Magazine, "À table avec Éloïse", "Trois recettes de saison et un invité surprise. 🥐"},
    {Magazine, "Côté potager", "Semer, tailler, récolter : les gestes du mois."},
    {Magazine, "L'Atelier du temps", "Une horloge, un fauteuil et leurs secrets."},
    {Series, "Les Héritiers du phare", "Une lettre retrouvée divise la famille."},
    {Series, "Commissaire Bréval", "Une disparition dans le vieux port."},
    {Series, "Rue des Tilleuls", "La boulangerie change de main."},
    {Film, "Un été à Valbrume", "Deux sœurs rouvrent l'hôtel de leur enfance. Comédie dramatique."},
    {Film, "Le Dernier Relieur", "Un artisan reçoit un livre qui n'existe pas. Mystère."},
    {Film, "La Traversée de l'hiver", "Un facteur, un col enneigé, une seule lettre. Aventure."},
    {Film, "Où vont les cerfs-volants", "Un enfant suit un fil à travers la ville. Conte."},
    {Documentary, "Mémoire de pierre", "Les bâtisseurs d'un pont, trois siècles après."},
    {Documentary, "Sous la vague", "Une saison avec les plongeurs de la côte."},
    {Documentary, "Forêts anciennes", "Un chêne, mille ans, dix mille habitants. 🌳"},
    {Children, "Zoé et le hérisson", "Zoé apprend à compter les étoiles. ⭐"},
    {Children, "Le Petit Train des nuages", "Le train a perdu son sifflet."},
    {Music, "Accordéon & Cie", "Bal populaire et chansons d'autrefois."},
    {Music, "Nocturne", "Piano seul, lumière basse."},
};

constexpr DemoShow czech[] = {
    {News, "Večerní zprávy", "Události dne doma i ve světě."},
    {News, "Zprávy z krajů", "Co se dnes stalo ve vašem okolí."},
    {Magazine, "Dobré ráno s Jiřinou", "Hosté, recepty a předpověď počasí."},
    {Magazine, "Chalupářův rok", "Jak opravit střechu dřív, než začne pršet."},
    {Series, "Dům U Tří jeřábů", "Do podkroví se stěhuje nečekaný nájemník."},
    {Series, "Případy poručíka Šípka", "Ztracený klíč otevře starý případ."},
    {Film, "Poslední vlak do Žďárku", "Každý cestující má důvod nevystoupit. Drama."},
    {Film, "Hodinář a kometa", "Muž opraví hodiny, které jdou pozpátku. Pohádka."},
    {Film, "Léto na Třešňové", "Tři přátelé, jedno kolo a příliš mnoho třešní. Komedie."},
    {Film, "Zimní přístav", "Loď zamrzla a posádka mlčí. Thriller."},
    {Documentary, "Řeka od pramene", "Pěšky po proudu až k moři."},
    {Documentary, "Noční obloha", "Kde je ještě opravdová tma. 🌌"},
    {Documentary, "Mosty a jejich stavitelé", "Kámen, ocel a odvaha."},
    {Children, "Ježek Příšerka", "Ježek hledá ztracené jablko. 🍎"},
    {Children, "Kouzelná tužka", "Co nakreslíš, to ožije."},
    {Music, "Písničky z mlýna", "Lidová muzika a vyprávění."},
    {Music, "Pozdní koncert", "Smyčcové kvarteto při svíčkách."},
};

constexpr DemoShow greek[] = {
    {News, "Οι ειδήσεις", "Όλα όσα έγιναν σήμερα, σε μισή ώρα."},
    {News, "Το δελτίο των νησιών", "Νέα και καιρός από το πέλαγος."},
    {Magazine, "Καλημέρα με καφέ", "Καλεσμένοι, συνταγές και ο καιρός. ☕"},
    {Magazine, "Στην κουζίνα της Φωτεινής", "Λαδερά του καλοκαιριού και ψωμί στον φούρνο."},
    {Series, "Το σπίτι στον μώλο", "Ένα γράμμα φτάνει με σαράντα χρόνια καθυστέρηση."},
    {Series, "Υπόθεση Μελισσινού", "Ο επιθεωρητής βρίσκει ένα κλειδί χωρίς πόρτα."},
    {Film, "Ο τελευταίος φάρος", "Ένας φαροφύλακας περιμένει ένα πλοίο. Δράμα."},
    {Film, "Καλοκαίρι στην Ανεμόεσσα", "Δύο αδελφές, μια βάρκα, ένα μυστικό. Κωμωδία."},
    {Film, "Έντεκα λυχνάρια", "Ένα χωριό δεν σβήνει τα φώτα του. Παραμύθι."},
    {Film, "Ο χάρτης του Ορέστη", "Ένα νησί λείπει από τον χάρτη. Περιπέτεια."},
    {Documentary, "Ο δρόμος του αλατιού", "Οι άνθρωποι πίσω από τις αλυκές."},
    {Documentary, "Κάτω από το κύμα", "Μια χρονιά με τους δύτες. 🐙"},
    {Children, "Η Ζωή και ο σκαντζόχοιρος", "Πόσα αστέρια χωράνε σε ένα βαζάκι; ⭐"},
    {Children, "Το μικρό καραβάκι", "Το καραβάκι έχασε τη σφυρίχτρα του."},
    {Music, "Νύχτα με μπουζούκι", "Τραγούδια του λιμανιού."},
    {Music, "Μικρές συναυλίες", "Ένα πιάνο και μια φωνή."},
};

constexpr DemoShow russian[] = {
    {News, "Новости дня", "Главные события за полчаса."},
    {News, "Вести с берега", "Город, порт и погода на завтра."},
    {Magazine, "Доброе утро, соседи", "Гости в студии, рецепты и гороскоп для кошек. 🐈"},
    {Magazine, "Дачный вопрос", "Когда сажать и чем подвязать."},
    {Series, "Дом с зелёной крышей", "В старом буфете находят письмо."},
    {Series, "Следователь Ветрова", "Лодка вернулась без рыбака."},
    {Film, "Последний трамвай", "Никто не спешит выходить. Детектив."},
    {Film, "Зима в Орешине", "Оркестр застрял в снегу с чужими нотами. Мелодрама."},
    {Film, "Часовщик и комета", "Он чинит часы, которые идут назад. Сказка."},
    {Film, "Соль и гром", "Смотритель маяка и беглец. Драма."},
    {Documentary, "Река, которая не спешит", "От родника до моря пешком."},
    {Documentary, "Подо льдом",
     "Робот, прорубь и четыреста метров кабеля. 🧊"},
    {Documentary, "Год пасечника", "Двенадцать месяцев одного улья."},
    {Children, "Ёжик и фонарь", "Ёжик учится считать звёзды. ⭐"},
    {Children, "Паровозик Пых", "Кто спрятал свисток?"},
    {Music, "Песни у пристани", "Старые песни и новые голоса."},
    {Music, "Ночной джаз", "Контрабас не ложится спать."},
};

}  // namespace

std::span<const DemoShow> frenchShows() {
    return french;
}
std::span<const DemoShow> czechShows() {
    return czech;
}
std::span<const DemoShow> greekShows() {
    return greek;
}
std::span<const DemoShow> russianShows() {
    return russian;
}

}  // namespace epgset
