// The symbol fonts' code pages; see symbol_fonts.h.
#pragma once

#include <string_view>

namespace metafile {

// The characters for the codes 0x20 to 0xFF, sixteen a row; U+FFFD stands where there is none. The
// fonts' pictures that Unicode took over only in version 7, and which few fonts have, are given by
// older characters that look alike, where there are such.
// Sources: see symbol_fonts.h.
using CodeTable = std::u32string_view;

// clang-format off
inline constexpr CodeTable kSymbol =
    U" !∀#∃%&∋()∗+,−./"
    U"0123456789:;<=>?"
    U"≅ΑΒΧΔΕΦΓΗΙϑΚΛΜΝΟ"
    U"ΠΘΡΣΤΥςΩΞΨΖ[∴]⊥_"
    U"‾αβχδεφγηιϕκλμνο"
    U"πθρστυϖωξψζ{|}∼�"
    U"����������������"
    U"����������������"
    U"€ϒ′≤⁄∞ƒ♣♦♥♠↔←↑→↓"
    U"°±″≥×∝∂•÷≠≡≈…│─↵"
    U"ℵℑℜ℘⊗⊕∅∩∪⊃⊇⊄⊂⊆∈∉"
    U"∠∇®©™∏√⋅¬∧∨⇔⇐⇑⇒⇓"
    U"◊⟨®©™∑⎛⎜⎝⎡⎢⎣⎧⎨⎩⎪"
    U"�⟩∫⌠⎮⌡⎞⎟⎠⎤⎥⎦⎫⎬⎭�";

inline constexpr CodeTable kZapfDingbats =
    U" ✁✂✃✄☎✆✇✈✉☛☞✌✍✎✏"
    U"✐✑✒✓✔✕✖✗✘✙✚✛✜✝✞✟"
    U"✠✡✢✣✤✥✦✧★✩✪✫✬✭✮✯"
    U"✰✱✲✳✴✵✶✷✸✹✺✻✼✽✾✿"
    U"❀❁❂❃❄❅❆❇❈❉❊❋●❍■❏"
    U"❐❑❒▲▼◆❖◗❘❙❚❛❜❝❞�"
    U"❨❩❪❫❬❭❮❯❰❱❲❳❴❵��"
    U"����������������"
    U"�❡❢❣❤❥❦❧♣♦♥♠①②③④"
    U"⑤⑥⑦⑧⑨⑩❶❷❸❹❺❻❼❽❾❿"
    U"➀➁➂➃➄➅➆➇➈➉➊➋➌➍➎➏"
    U"➐➑➒➓➔→↔↕➘➙➚➛➜➝➞➟"
    U"➠➡➢➣➤➥➦➧➨➩➪➫➬➭➮➯"
    U"�➱➲➳➴➵➶➷➸➹➺➻➼➽➾�";

inline constexpr CodeTable kWingdings =
    U" ✏✂✁👓🔔📖🕯☎✆✉✉📪📫📬📭"
    U"🗀🗁🗎🗏🗐🗄⌛⌨🖰🖲🖳🖴🖫🖬✇✍"
    U"✍✌🖏👍👎☜☞☝☟✋☺😐☹💣☠⚐"
    U"⚑✈☼🌢❄✝✞☩✠✡☪☯ॐ☸♈♉"
    U"♊♋♌♍♎♏♐♑♒♓&&●❍■□"
    U"□❑❒⧫⧫◆❖◆⌧⍓⌘❀✿❝❞▯"
    U"⓪➀➁➂➃➄➅➆➇➈➉⓿➊➋➌➍"
    U"➎➏➐➑➒➓❧❧❧❧❧❧❧❧·•"
    U"▪○○○◉◎❍▪◻▴✦★✶✴✹✵"
    U"⊕⊕⌑⌑⍰✪✰🕐🕑🕒🕓🕔🕕🕖🕗🕘"
    U"🕙🕚🕛↲↳↰↱↰↱↲↳❧❧❧❧❧"
    U"❧❧❧❧❧⌫⌦◁➢△▽⇦➲⇧⇩←"
    U"→↑↓↖↗↙↘⬅➡⬆⬇⬉⬈⬋⬊⇦"
    U"⇨⇧⇩⬄⇳⬁⬀⬃⬂▭▫✗✓☒☑⊞";

inline constexpr CodeTable kWingdings2 =
    U" ✎✒✏✐✄✀☏✆🗅🗆🗇🗈🗉🗊🗋"
    U"🗌🗍📋🗑🗔🖵🖶🖷🖸🖭🖯🖱🖒🖓☜☞"
    U"☚☛☜☞☜☞☝☟☝☟☝☟☝☟✋✗"
    U"✓☒☑☒☒⊗⊗⊘⊘&&&&‽‽‽"
    U"‽❧❧❧❧❧❧❧❧⓪①②③④⑤⑥"
    U"⑦⑧⑨⑩⓿❶❷❸❹❺❻❼❽❾❿�"
    U"☉🌕☽☾¶✝✞🕜🕝🕞🕟🕠🕡🕢🕣🕤"
    U"🕥🕦🕧🙨🙩·••●○○○◉⊙◉◉"
    U"◎▪■□□□□□▣▣▣▣▣◆◆◇"
    U"◈◈◈◈◈◈⧫⧫◊◊◖◗◓◒■◆"
    U"⬟⬟⬣⬢⬢⬢++✚✚✚✚✚✕✕✖"
    U"✖✖✖✖******✱✱✱✱✱✱"
    U"✳✳✳✳✳▴▴✦✦★★✶✶✴✸✹"
    U"✹▴✦✯✯✹✦✦※⁂������";

inline constexpr CodeTable kWingdings3 =
    U" ←→↑↓↖↗↙↘⇤⇥↥↧↖↘↑"
    U"↓↔↕⇠⇢⇡⇣↯↲↳↰↱←→←→"
    U"↩↪↵↳⇆⇵⇥↧⇇⇉⇈⇊↶↷↶↷"
    U"↻↺⎋⌤⌃⌥␣⍽⇪⇪⇦⇨⇦⇨⇦⇨"
    U"⇦⇨⇦⇨⇦⇨←→↑↓↖↗↙↘↔↕"
    U"▲▼△▽◀▶◁▷◣◢◤◥◂▸▴�"
    U"▾▴▾◂▸◀▶▲▼←→↑↓←→↑"
    U"↓⬅➡⬆⬇⬅➡⬆⬇←→↑↓←→↑"
    U"↓⬅➡⬆⬇←→←→←→⬅🢜🢝🢞🢟"
    U"➡⬅➡←→←→↑↓←→↑↓←→↑"
    U"↓⬅➡⬆⬇⬅➡⬆⬇←→←→←→←"
    U"→←→↑↓↖↗↙↘←→↑↓↖↗↙"
    U"↘⬅➡⬆⬇⬉⬈⬋⬊←→↑↓⇦⇨⇧"
    U"⇩���������������";

inline constexpr CodeTable kWebdings =
    U" 🕷🕸🕲🕶🏆🎖🖇🗨🗩🗰🗱🌶🎗🙾🙼"
    U"_□❐◀▶▲▼«»⇤⇥‖■●🗚🗳"
    U"🛠🏗🏘🏙🏚🏜🏭🏛⌂🏖🏝🛣🔍🏔👁👂"
    U"🏞🏕🛤🏟🛳🕬🕫🕨🔈🎔🎕🗬🙽🗭🗪🗫"
    U"↺✔🚲□⛨📦🛱■🚑ℹ🛩🛰✦🕴⬤🛥"
    U"🚔↻✕?🛲🚇🚍⛳⊘⊖🚭🗮│🗯⚡�"
    U"♂♀🛉🛊🚼👽🏋⛷🏂🏌🏊🏄🏍🏎🚘🗠"
    U"🛢$🏷💳👪🗡🗢🗣✯✉✉✉✉🖹🖺🖻"
    U"🕵🕰🖽🖾📋🗒🗓📖📚🗞🗟🗃🗂🖼🎭🎜"
    U"🎘🎙🎧💿🎞📷🎟🎬📽📹📾📻🎚🎛📺💻"
    U"🖥🖦🖧🕹🎮🕻🕼📟🖁🖀🖨🖩🖿🖪🗜🔒"
    U"🔓🗝📥📤🕳☀☁☁☁☁☃☔☈🌪🌬☁"
    U"☾🌡🛋🛏🍽🍸🛎🛍P♿🛆🖈🎓🗤🗥🗦"
    U"🗧🛪🐿🐦🐟🐕🐈🙬🙮🙭🙯🗺🌍🌏🌎🕊"; // clang-format on

static_assert(kSymbol.size() == 224);
static_assert(kZapfDingbats.size() == 224);
static_assert(kWingdings.size() == 224);
static_assert(kWingdings2.size() == 224);
static_assert(kWingdings3.size() == 224);
static_assert(kWebdings.size() == 224);

} // namespace metafile
