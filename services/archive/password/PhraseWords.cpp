#include "services/archive/password/PhraseWords.h"

#include <algorithm>
#include <iterator>

namespace obarchive {
namespace {

// In the order of the alphabet: looked up by halving. Short, plain, easy to say on the telephone.
constexpr std::string_view kWords[] = {
    "acorn",   "actor",   "adobe",   "agent",   "alarm",   "album",   "alert",   "algae",
    "alien",   "alley",   "alloy",   "almond",  "alpha",   "amber",   "ample",   "anchor",
    "angle",   "ankle",   "anvil",   "apple",   "apron",   "arch",    "arena",   "armor",
    "arrow",   "artist",  "aspen",   "atlas",   "atom",    "attic",   "august",  "aunt",
    "autumn",  "avenue",  "award",   "awning",  "bacon",   "badge",   "bagel",   "baker",
    "ballet",  "bamboo",  "banana",  "banjo",   "banner",  "barber",  "barley",  "barn",
    "barrel",  "basil",   "basin",   "basket",  "batch",   "bazaar",  "beach",   "beacon",
    "beaker",  "beam",    "bean",    "beard",   "beaver",  "bed",     "beech",   "beetle",
    "bell",    "belt",    "bench",   "berry",   "birch",   "bird",    "biscuit", "bishop",
    "blade",   "blaze",   "blender", "blimp",   "blink",   "block",   "bloom",   "blossom",
    "blouse",  "blue",    "board",   "boat",    "bonnet",  "book",    "boot",    "border",
    "bottle",  "boulder", "bounce",  "bowl",    "box",     "bracket", "braid",   "brake",
    "branch",  "brass",   "bread",   "breeze",  "brick",   "bridge",  "bright",  "bronze",
    "brook",   "broom",   "brother", "brown",   "brush",   "bubble",  "bucket",  "buckle",
    "bud",     "budget",  "buffet",  "bugle",   "bulb",    "bundle",  "bunny",   "burrow",
    "bus",     "butter",  "button",  "cabin",   "cable",   "cactus",  "cake",    "camel",
    "camera",  "camp",    "canal",   "candle",  "candy",   "canoe",   "canvas",  "canyon",
    "cape",    "captain", "carbon",  "card",    "cargo",   "carol",   "carpet",  "carrot",
    "cart",    "cashew",  "castle",  "cattle",  "cavern",  "cedar",   "celery",  "cellar",
    "cello",   "cement",  "cereal",  "chain",   "chair",   "chalk",   "channel", "chapel",
    "chapter", "charm",   "cheese",  "cherry",  "chess",   "chest",   "chimney", "chorus",
    "cider",   "cinema",  "circle",  "circus",  "citrus",  "city",    "clam",    "clamp",
    "clay",    "cliff",   "clinic",  "cloak",   "clock",   "cloth",   "cloud",   "clover",
    "coach",   "coal",    "coast",   "cobalt",  "cobra",   "cobweb",  "cocoa",   "coconut",
    "coffee",  "coin",    "collar",  "comet",   "compass", "concert", "cone",    "cookie",
    "copper",  "coral",   "corner",  "cotton",  "couch",   "cousin",  "cover",   "cow",
    "crab",    "cradle",  "crane",   "crater",  "crayon",  "cream",   "creek",   "cricket",
    "crisp",   "crocus",  "crop",    "crown",   "cruise",  "crumb",   "crust",   "crystal",
    "cube",    "cuckoo",  "cuff",    "cup",     "curb",    "curry",   "curtain", "curve",
    "cymbal",  "cypress", "dairy",   "daisy",   "dance",   "daring",  "dawn",    "deck",
    "decoy",   "deer",    "delta",   "depot",   "desert",  "desk",    "detour",  "dial",
    "diamond", "diary",   "dill",    "dime",    "dinner",  "ditch",   "diver",   "dock",
    "doctor",  "dollar",  "donkey",  "door",    "dough",   "dove",    "drama",   "drawer",
    "dream",   "dress",   "drift",   "drum",    "duck",    "dune",    "dusk",    "dust",
    "eagle",   "earth",   "easel",   "east",    "echo",    "edge",    "editor",  "eel",
    "egg",     "elbow",   "elder",   "elegant", "elk",     "elm",     "ember",   "emblem",
    "engine",  "equal",   "errand",  "essay",   "event",   "exit",    "expert",  "fable",
    "fabric",  "falcon",  "family",  "fan",     "farm",    "father",  "fawn",    "feast",
    "feather", "fence",   "fern",    "ferry",   "fiber",   "fiddle",  "field",   "fig",
    "film",    "filter",  "finch",   "finger",  "fir",     "fish",    "flag",    "flame",
    "flask",   "fleet",   "flint",   "float",   "flock",   "floor",   "flour",   "flower",
    "flute",   "foam",    "fog",     "folder",  "forest",  "fork",    "fossil",  "fox",
    "frame",   "fridge",  "friend",  "fringe",  "frog",    "frost",   "fruit",   "funnel",
    "gadget",  "galaxy",  "gallon",  "game",    "garage",  "garden",  "garlic",  "garnet",
    "gate",    "gem",     "geyser",  "giant",   "gift",    "ginger",  "giraffe", "glade",
    "glass",   "glide",   "globe",   "glove",   "glow",    "glue",    "goat",    "gold",
    "golf",    "goose",   "gorge",   "grain",   "grape",   "grass",   "gravel",  "green",
    "grill",   "grove",   "guest",   "guide",   "guitar",  "gulf",    "gull",    "gutter",
    "habit",   "hail",    "hammer",  "hammock", "hamster", "handle",  "harbor",  "harp",
    "harvest", "hat",     "hawk",    "hazel",   "heart",   "heather", "hedge",   "helmet",
    "hen",     "herb",    "hero",    "heron",   "hill",    "hinge",   "hobby",   "hockey",
    "honey",   "hood",    "hoop",    "horizon", "horn",    "horse",   "hose",    "hotel",
    "hour",    "house",   "humble",  "hummus",  "hut",     "ice",     "icicle",  "igloo",
    "index",   "indigo",  "ink",     "inn",     "insect",  "iris",    "iron",    "island",
    "ivory",   "ivy",     "jacket",  "jade",    "jaguar",  "jam",     "january", "jar",
    "jasmine", "jazz",    "jelly",   "jewel",   "jigsaw",  "jockey",  "journey", "joy",
    "judge",   "juggle",  "juice",   "jungle",  "juniper", "jury",    "kayak",   "keel",
    "kettle",  "key",     "kingdom", "kiosk",   "kite",    "kitten",  "kiwi",    "knee",
    "knight",  "knot",    "koala",   "label",   "lace",    "ladder",  "lagoon",  "lake",
    "lamb",    "lamp",    "lapel",   "lark",    "laser",   "lasso",   "laundry", "laurel",
    "lava",    "lawn",    "leaf",    "lecture", "ledge",   "lemon",   "lens",    "lentil",
    "leopard", "letter",  "level",   "library", "lichen",  "lid",     "light",   "lilac",
    "lily",    "lime",    "linen",   "lion",    "liquid",  "list",    "lizard",  "llama",
    "lobby",   "lobster", "locket",  "locust",  "lodge",   "loft",    "logic",   "lotus",
    "lounge",  "lumber",  "lunar",   "lunch",   "lute",    "lynx",    "lyric",   "machine",
    "magnet",  "magpie",  "mail",    "mammoth", "mango",   "manor",   "mantle",  "map",
    "maple",   "marble",  "march",   "margin",  "market",  "marsh",   "mask",    "mason",
    "mast",    "maze",    "meadow",  "medal",   "medley",  "melody",  "melon",   "member",
    "memo",    "mentor",  "menu",    "mercury", "mermaid", "metal",   "meteor",  "middle",
    "milk",    "mill",    "mint",    "minute",  "mirror",  "mist",    "mitten",  "model",
    "module",  "molar",   "monday",  "month",   "moon",    "moose",   "mortar",  "mosaic",
    "moss",    "moth",    "motor",   "mouse",   "movie",   "muffin",  "museum",  "music",
    "myrtle",  "napkin",  "narrow",  "nature",  "nectar",  "needle",  "nephew",  "nest",
    "net",     "nettle",  "nickel",  "night",   "noble",   "noodle",  "north",   "nose",
    "note",    "novel",   "number",  "nurse",   "nutmeg",  "nylon",   "oak",     "oasis",
    "oat",     "oboe",    "ocean",   "octave",  "october", "office",  "olive",   "omelet",
    "onion",   "opal",    "opera",   "orange",  "orbit",   "orchard", "orchid",  "organ",
    "ostrich", "otter",   "oven",    "owl",     "oxygen",  "oyster",  "pack",    "paddle",
    "page",    "paint",   "palace",  "palm",    "panda",   "panel",   "panther", "papaya",
    "paper",   "parade",  "parcel",  "park",    "parrot",  "parsley", "pasta",   "pastry",
    "path",    "patio",   "pea",     "peach",   "peacock", "peanut",  "pearl",   "pebble",
    "pecan",   "pedal",   "pelican", "pen",     "pencil",  "penguin", "pepper",  "petal",
    "piano",   "picnic",  "picture", "pie",     "pigeon",  "pillow",  "pilot",   "pine",
    "pink",    "pipe",    "pirate",  "pixel",   "pizza",   "planet",  "plank",   "plaza",
    "plum",    "pocket",  "poem",    "poet",    "polar",   "pollen",  "polo",    "pond",
    "pony",    "poplar",  "poppy",   "porch",   "port",    "potato",  "pottery", "powder",
    "prairie", "pretzel", "prism",   "prize",   "puddle",  "puffin",  "pulley",  "pumpkin",
    "puppet",  "purple",  "purse",   "puzzle",  "quail",   "quartz",  "quest",   "quiet",
    "quill",   "quilt",   "quince",  "quiver",  "rabbit",  "raccoon", "radar",   "radio",
    "radish",  "raft",    "railway", "rain",    "raisin",  "ramp",    "ranch",   "raven",
    "ravine",  "razor",   "recipe",  "record",  "reef",    "referee", "region",  "relay",
    "relish",  "remedy",  "rescue",  "rhubarb", "rhyme",   "rhythm",  "ribbon",  "rice",
    "riddle",  "ridge",   "ring",    "ripple",  "river",   "road",    "robin",   "robot",
    "rock",    "rocket",  "roof",    "room",    "root",    "rope",    "rose",    "rotor",
    "rowboat", "ruby",    "rudder",  "rug",     "ruler",   "rumor",   "runner",  "rye",
    "saddle",  "saffron", "sage",    "sail",    "salad",   "salmon",  "salt",    "sand",
    "sandal",  "sapling", "satin",   "saturn",  "sauce",   "saucer",  "sausage", "savanna",
    "scale",   "scarf",   "scholar", "school",  "science", "scout",   "screen",  "scroll",
    "seal",    "season",  "seaweed", "seed",    "shadow",  "shale",   "shark",   "sheep",
    "shelf",   "shell",   "sherbet", "shield",  "shirt",   "shoe",    "shore",   "shovel",
    "shrimp",  "shuttle", "signal",  "silk",    "silver",  "singer",  "sink",    "siren",
    "sister",  "skate",   "sketch",  "ski",     "skirt",   "sky",     "slate",   "sled",
    "sleeve",  "slope",   "sloth",   "smile",   "smoke",   "snail",   "snow",    "soap",
    "soccer",  "sock",    "sofa",    "soil",    "solar",   "sonata",  "song",    "soup",
    "south",   "spark",   "sparrow", "spice",   "spider",  "spinach", "spiral",  "sponge",
    "spoon",   "spring",  "spruce",  "square",  "squash",  "squid",   "stable",  "staff",
    "stage",   "stair",   "stamp",   "staple",  "star",    "statue",  "steam",   "steel",
    "stem",    "stereo",  "stone",   "stool",   "stork",   "storm",   "story",   "stove",
    "straw",   "stream",  "street",  "string",  "stripe",  "studio",  "sugar",   "summer",
    "summit",  "sun",     "sunday",  "sunset",  "surf",    "swallow", "swan",    "sweater",
    "swing",   "symbol",  "syrup",   "table",   "tablet",  "tadpole", "tailor",  "talent",
    "tango",   "tank",    "target",  "tavern",  "taxi",    "tea",     "teacher", "temple",
    "tennis",  "tent",    "thicket", "thistle", "thread",  "throne",  "thyme",   "ticket",
    "tide",    "tiger",   "tile",    "timber",  "tin",     "toast",   "toffee",  "tomato",
    "topaz",   "torch",   "towel",   "tower",   "town",    "toy",     "tractor", "trail",
    "train",   "trapeze", "travel",  "tray",    "tree",    "tribe",   "tripod",  "trolley",
    "trophy",  "trout",   "truck",   "trunk",   "tulip",   "tuna",    "tundra",  "tunnel",
    "turban",  "turkey",  "turnip",  "turtle",  "tuxedo",  "twig",    "twin",    "uncle",
    "unicorn", "unit",    "upland",  "utensil", "vacuum",  "valley",  "vanilla", "vapor",
    "vase",    "vault",   "vector",  "velvet",  "vendor",  "venture", "veranda", "verse",
    "vessel",  "vest",    "viaduct", "video",   "village", "vine",    "violet",  "violin",
    "visit",   "vista",   "volcano", "volume",  "voyage",  "vulture", "waffle",  "wagon",
    "walnut",  "walrus",  "waltz",   "wander",  "wasp",    "watch",   "water",   "wave",
    "wax",     "weather", "weaver",  "wedge",   "weekend", "west",    "whale",   "wheat",
    "wheel",   "willow",  "wind",    "window",  "wing",    "winter",  "wire",    "wizard",
    "wolf",    "wombat",  "wonder",  "wood",    "wool",    "word",    "wreath",  "wren",
    "wrist",   "writer",  "yacht",   "yarn",    "year",    "yeast",   "yellow",  "yogurt",
    "zebra",   "zenith",  "zephyr",  "zero",    "zigzag",  "zinc",    "zipper",  "zone"};

static_assert(std::size(kWords) == kPhraseWordCount);

char Lower(wchar_t unit) {
    const wchar_t lower = unit >= L'A' && unit <= L'Z' ? unit + 32 : unit;
    return lower < 0x7F ? static_cast<char>(lower)
                        : '\x7F'; // stands in no word, after every letter
}

bool IsBefore(std::string_view word, std::wstring_view text) {
    return std::lexicographical_compare(
        word.begin(), word.end(), text.begin(), text.end(), [](auto one, auto two) {
            return Lower(static_cast<wchar_t>(one)) < Lower(static_cast<wchar_t>(two));
        });
}

} // namespace

std::string_view PhraseWord(std::size_t index) { return kWords[index % kPhraseWordCount]; }

bool IsPhraseWord(std::wstring_view text) {
    const auto* const found =
        std::lower_bound(std::begin(kWords), std::end(kWords), text, IsBefore);
    return found != std::end(kWords) &&
           std::equal(found->begin(), found->end(), text.begin(), text.end(),
                      [](char one, wchar_t two) { return one == Lower(two); });
}

} // namespace obarchive
