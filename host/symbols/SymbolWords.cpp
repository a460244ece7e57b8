#include "SymbolWords.h"

#include "site/AnyCase.h"

#include <map>

namespace host {

std::string folded(std::string utf8) {
    bool isWestern = false; // whether the byte before says that U+00C0 to U+00FF follow
    for (char& byte : utf8) {
        const auto value = static_cast<unsigned char>(byte);
        const bool isCapital =
            isWestern && value >= 0x80 && value <= 0x9E && value != 0x97; // 97: the times sign
        isWestern = value == 0xC3;
        byte = isCapital ? static_cast<char>(value + 0x20) : lowered(byte);
    }
    return utf8;
}

std::optional<char> mediaNamed(const std::string& word) {
    static const std::map<std::string, char> media = {{"i", 'I'},
                                                      {"input", 'I'},
                                                      {"inputs", 'I'},
                                                      {"eingang", 'I'},
                                                      {"eingänge", 'I'},
                                                      {"entrée", 'I'},
                                                      {"entree", 'I'},
                                                      {"entrées", 'I'},
                                                      {"ingresso", 'I'},
                                                      {"ingressi", 'I'},
                                                      {"o", 'O'},
                                                      {"output", 'O'},
                                                      {"outputs", 'O'},
                                                      {"ausgang", 'O'},
                                                      {"ausgänge", 'O'},
                                                      {"sortie", 'O'},
                                                      {"sorties", 'O'},
                                                      {"uscita", 'O'},
                                                      {"uscite", 'O'},
                                                      {"f", 'F'},
                                                      {"flag", 'F'},
                                                      {"flags", 'F'},
                                                      {"merker", 'F'},
                                                      {"drapeau", 'F'},
                                                      {"indicateur", 'F'},
                                                      {"indicatore", 'F'},
                                                      {"r", 'R'},
                                                      {"reg", 'R'},
                                                      {"register", 'R'},
                                                      {"registers", 'R'},
                                                      {"registre", 'R'},
                                                      {"registres", 'R'},
                                                      {"registro", 'R'},
                                                      {"registri", 'R'},
                                                      {"t", 'T'},
                                                      {"timer", 'T'},
                                                      {"timers", 'T'},
                                                      {"zeit", 'T'},
                                                      {"zeitglied", 'T'},
                                                      {"temporisateur", 'T'},
                                                      {"temporisation", 'T'},
                                                      {"temporizzatore", 'T'},
                                                      {"c", 'C'},
                                                      {"counter", 'C'},
                                                      {"counters", 'C'},
                                                      {"zähler", 'C'},
                                                      {"zaehler", 'C'},
                                                      {"compteur", 'C'},
                                                      {"compteurs", 'C'},
                                                      {"contatore", 'C'},
                                                      {"contatori", 'C'}};
    const auto found = media.find(folded(word));
    return found == media.end() ? std::nullopt : std::optional(found->second);
}

bool isFloatWord(const std::string& word) {
    const std::string plain = folded(word);
    return plain == "float" || plain == "floating" || plain == "fp" || plain == "real" ||
           plain == "gleitkomma" || plain == "flottant" || plain == "virgola";
}

} // namespace host
