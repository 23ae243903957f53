#include "TownNames.h"

#include <array>
#include <cstddef>
#include <span>
#include <string_view>

namespace gallery
{

namespace
{

using Parts = std::span<const std::string_view>;

// A name is a beginning, perhaps a middle, and an end. Some have a word before.
struct Speech
{
    Parts befores;
    Parts begins;
    Parts middles;
    Parts ends;
    unsigned int perHundred; // that have a middle
};

constexpr std::string_view cEnglishBefores[] = {"New ", "Port ", "Fort ", "North ", "Mount ", "Lake ", "Cape "};
constexpr std::string_view cEnglishBegins[] = {"Ash", "Oak",   "Mill",   "Win",   "Hart", "Lang",  "Brad", "Stan",
                                               "Cor", "Ember", "Fair",   "Gran",  "Hol",  "Kings", "Lin",  "Mar",
                                               "Nor", "Red",   "Silver", "Thorn", "Wal",  "Wes",   "Elm",  "Bur"};
constexpr std::string_view cEnglishMiddles[] = {"ing", "er", "en", "le"};
constexpr std::string_view cEnglishEnds[] = {"ford", "ton",  "bridge", "field", "wood", "ham",  "port",  "dale",
                                             "ley",  "burg", "mouth",  "view",  "well", "wick", "stead", "haven"};

constexpr std::string_view cIberianBefores[] = {"San ", "Santa ", "Villa ", "Puerto ", "Nueva ", "Los ", "La "};
constexpr std::string_view cIberianBegins[] = {"Al",  "Mar", "Cor", "Bel", "Tres", "Mont", "Val", "Car", "Ses", "Gua",
                                               "Tor", "Con", "Ita", "Ara", "Pira", "Que",  "Sol", "Ria", "Hua", "Tama"};
constexpr std::string_view cIberianMiddles[] = {"a", "i", "an", "ador", "ti", "ca", "ro", "pe", "qui"};
constexpr std::string_view cIberianEnds[] = {"verde", "dillo", "mar",   "zuela", "ción", "rica", "lito", "yba",
                                             "cura",  "tosa",  "nilla", "pampa", "zón",  "redo", "gua",  "tinga"};

constexpr std::string_view cNorthernBefores[] = {"Ober", "Neu", "Alt", "Groß ", "Bad ", "Nieder"};
constexpr std::string_view cNorthernBegins[] = {"berg", "brun", "dorn", "eich", "falken", "grün", "hag",  "hoch",
                                                "kall", "lind", "möl",  "nord", "ost",    "rös",  "sand", "stein",
                                                "tann", "ul",   "wald", "wies", "ydre",   "åst",  "had",  "elm"};
constexpr std::string_view cNorthernMiddles[] = {"en", "er", "els", "ing"};
constexpr std::string_view cNorthernEnds[] = {"burg",  "hafen", "heim", "dorf", "stad", "vik",  "hausen", "furt",
                                              "brück", "rode",  "borg", "lund", "sund", "beek", "moor",   "fors"};

constexpr std::string_view cSouthernBefores[] = {"Saint-", "Monte", "Castel", "Bel", "Villa", "Cala "};
constexpr std::string_view cSouthernBegins[] = {"al",  "ber", "cam",  "der", "fior", "gar", "lor",
                                                "mar", "nov", "or",   "pal", "rav",  "ser", "tor",
                                                "ver", "zan", "chal", "bou", "cler", "mes"};
constexpr std::string_view cSouthernMiddles[] = {"a", "e", "i", "o", "an", "el", "iv"};
constexpr std::string_view cSouthernEnds[] = {"rano", "cella",  "lona",  "rosa", "tova", "nza",  "gnac", "ville",
                                              "mont", "seille", "vento", "dine", "lupo", "scia", "mari", "tesa"};

constexpr std::string_view cEasternBefores[] = {"Nova ", "Stara ", "Velika ", "Mala ", "Bela "};
constexpr std::string_view cEasternBegins[] = {"bor",  "brod", "čer", "dub", "gor", "jas", "kras",
                                               "lip",  "mir",  "nov", "ost", "pod", "rad", "smol",
                                               "tver", "vol",  "zel", "žit", "kam", "ros"};
constexpr std::string_view cEasternMiddles[] = {"o", "i", "e", "an", "ov", "en", "is"};
constexpr std::string_view cEasternEnds[] = {"slav", "grad", "nica", "pol", "vets",  "mir", "ovo", "insk",
                                             "jevo", "nik",  "waż",  "ice", "ograd", "sk",  "rin", "łów"};

constexpr std::string_view cArabicBefores[] = {"Al ", "Wadi ", "Bir ", "Qasr ", "Ain ", "Jebel "};
constexpr std::string_view cArabicBegins[] = {"ba", "da", "fa", "ha", "ja", "ka", "ma",  "na",  "qa", "ra",
                                              "sa", "ta", "ya", "za", "mu", "su", "khu", "she", "ar", "is"};
constexpr std::string_view cArabicMiddles[] = {"ri", "hra", "li", "ma", "ra", "wa", "bi"};
constexpr std::string_view cArabicEnds[] = {"bad", "dan", "far", "hrān", "jir", "kesh", "lah", "mara",
                                            "nūr", "qat", "rif", "ṣir",  "wān", "yah",  "zad", "sala"};

constexpr std::string_view cIndianBefores[] = {"Sri ", "Naya ", "Purana ", "Raja"};
constexpr std::string_view cIndianBegins[] = {"ama",   "bha",  "chan", "dev",  "ganga", "hari", "indra", "jai", "kala",
                                              "laksh", "mani", "nara", "pada", "rama",  "shan", "tiru",  "uda", "vija"};
constexpr std::string_view cIndianMiddles[] = {"na", "ra", "ya", "ti", "ga", "ma"};
constexpr std::string_view cIndianEnds[] = {"pur",  "nagar", "garh",  "bad",  "kot",  "patnam", "vati",  "wara",
                                            "gaon", "dih",   "palli", "kere", "ganj", "halli",  "puram", "giri"};

constexpr std::string_view cFarBefores[] = {"Xin", "Da", "Bei", "Nan"};
constexpr std::string_view cFarBegins[] = {"an",   "bao", "chang", "dong",  "fu",   "gao",  "hai",
                                           "jing", "kai", "lan",   "min",   "ning", "ping", "qing",
                                           "shan", "tai", "wu",    "xiang", "yun",  "zhen"};
constexpr std::string_view cFarMiddles[] = {"li", "an", "yu"};
constexpr std::string_view cFarEnds[] = {"jiang", "zhou", "yang", "shan", "hai", "chuan", "men",  "cheng",
                                         "kou",   "ling", "xi",   "hu",   "an",  "du",    "long", "dao"};

constexpr std::string_view cIslandBefores[] = {"Kota ", "Tanjung ", "Pulau ", "Kuala ", "Batu "};
constexpr std::string_view cIslandBegins[] = {"ban",  "ka",   "lem",   "ma",    "pa",  "sa",    "ta",
                                              "wa",   "sura", "jaya",  "palem", "ra",  "tonga", "fa",
                                              "nuku", "hana", "balik", "denu",  "man", "ku"};
constexpr std::string_view cIslandMiddles[] = {"la", "na", "ri", "ku", "lo", "ta", "ma"};
constexpr std::string_view cIslandEnds[] = {"bang", "dung", "karta", "lan",  "mai", "nga", "papan", "rai",
                                            "sari", "tara", "wali",  "nalu", "loa", "rua", "langi", "baya"};

constexpr std::string_view cAfricanBefores[] = {"Port-", "Ouled ", "Mbanza "};
constexpr std::string_view cAfricanBegins[] = {"ba", "bu", "cha", "da",  "ga", "ka", "ki", "lu", "ma", "mba",
                                               "mo", "na", "nda", "nya", "ru", "sa", "ta", "tu", "wa", "zo"};
constexpr std::string_view cAfricanMiddles[] = {"ba", "ga", "li", "ma", "mbe", "ndo", "ra", "sa", "wa", "ngu"};
constexpr std::string_view cAfricanEnds[] = {"bari", "dugu", "fara", "gali",  "kasa", "lembe", "mbo",  "ndja",
                                             "ngo",  "reko", "soma", "tanga", "wayo", "zuru",  "goma", "kuru"};

constexpr Speech cEnglish{cEnglishBefores, cEnglishBegins, cEnglishMiddles, cEnglishEnds, 25};
constexpr Speech cIberian{cIberianBefores, cIberianBegins, cIberianMiddles, cIberianEnds, 35};
constexpr Speech cNorthern{cNorthernBefores, cNorthernBegins, cNorthernMiddles, cNorthernEnds, 30};
constexpr Speech cSouthern{cSouthernBefores, cSouthernBegins, cSouthernMiddles, cSouthernEnds, 60};
constexpr Speech cEastern{cEasternBefores, cEasternBegins, cEasternMiddles, cEasternEnds, 70};
constexpr Speech cArabic{cArabicBefores, cArabicBegins, cArabicMiddles, cArabicEnds, 45};
constexpr Speech cIndian{cIndianBefores, cIndianBegins, cIndianMiddles, cIndianEnds, 35};
constexpr Speech cFar{cFarBefores, cFarBegins, cFarMiddles, cFarEnds, 12};
constexpr Speech cIsland{cIslandBefores, cIslandBegins, cIslandMiddles, cIslandEnds, 50};
constexpr Speech cAfrican{cAfricanBefores, cAfricanBegins, cAfricanMiddles, cAfricanEnds, 50};

struct Region
{
    double west, south, east, north;
    const Speech& speech;
};

// The first that a place is in.
constexpr Region cRegions[] = {
    {-180, 15, -110, 25, cIsland},  {-180, 28, -52, 90, cEnglish}, {-52, 59, -10, 90, cNorthern},
    {-180, -60, -30, 28, cIberian}, {-12, 49.6, 0, 60, cEnglish},  {-10, 35, -2, 44, cIberian},
    {-5, 42, 5, 50, cSouthern},     {6, 36, 15, 45.4, cSouthern},  {0, 45.4, 30, 72, cNorthern},
    {15, 34, 27, 41, cSouthern},    {12, 41, 70, 85, cEastern},    {-20, 14, 66, 44, cArabic},
    {66, 0, 92.5, 37, cIndian},     {10, 44, 180, 85, cEastern},   {92.5, 21, 150, 55, cFar},
    {110, -50, 180, -22, cEnglish}, {-30, -40, 60, 14, cAfrican},  {60, -50, 180, 21, cIsland}};

constexpr unsigned int cPerHundredBefore = 9;
constexpr int cMostNameTries = 20; // to make one that there wasn't

const Speech& speechAt(double longitude, double latitude)
{
    for (const Region& region : cRegions)
        if (longitude >= region.west && longitude < region.east && latitude >= region.south && latitude < region.north)
            return region.speech;
    return cEnglish;
}

} // namespace

std::string TownNames::make(double longitude, double latitude)
{
    const Speech& speech = speechAt(longitude, latitude);
    const auto below = [this](std::size_t n) { return _random() / 64 % n; };
    const auto oneOf = [&below](Parts parts) { return parts[below(parts.size())]; };
    std::string all;
    for (int i = 0; i < cMostNameTries; ++i)
    {
        std::string name, word(oneOf(speech.begins));
        if (below(100) < cPerHundredBefore)
            name = oneOf(speech.befores);
        if (below(100) < speech.perHundred)
            word += oneOf(speech.middles);
        word += oneOf(speech.ends);
        // A name begins with a capital letter, a word within it too.
        if ((name.empty() || name.back() == ' ' || name.back() == '-') && word[0] >= 'a' && word[0] <= 'z')
            word[0] = static_cast<char>(word[0] - 'a' + 'A');
        else if (word.starts_with("å"))
            word.replace(0, 2, "Å");
        else if (word.starts_with("č") || word.starts_with("ž"))
            word.replace(0, 2, word.starts_with("č") ? "Č" : "Ž");
        all = name + word;
        if (_made.insert(all).second)
            break;
    }
    return all;
}

} // namespace gallery
