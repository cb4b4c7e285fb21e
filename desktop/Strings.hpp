#pragma once

#include <cstdint>
#include <string>

#include "widgetkit/WidgetFamily.hpp"

// What the desktop says to people.
namespace zelto::desktop::strings {

inline constexpr const char* windowTitle = "Widgets do Zelto";
inline constexpr const char* galleryPage = "Galeria";
inline constexpr const char* galleryHint = "Clique ou arraste um widget para a área de trabalho.";
inline constexpr const char* galleryEmpty = "A extensão de widgets ainda não respondeu.";
inline constexpr const char* gallerySearch = "Procurar um widget";
inline constexpr const char* galleryNothingFound = "Nenhum widget com este nome.";

inline constexpr const char* placedPage = "Na área de trabalho";
inline constexpr const char* nothingPlaced = "Não há widgets na área de trabalho.";
inline constexpr const char* withoutRoom = "não cabe na tela";

inline constexpr const char* settingsPage = "Ajustes";
inline constexpr const char* lockPositions = "Bloquear posições";
inline constexpr const char* scale = "Tamanho dos widgets";
inline constexpr const char* scaleOfDesktop = "Como no sistema";
inline constexpr const char* refresh = "Atualizar leituras";
inline constexpr const char* margin = "Margem livre nas bordas (pontos)";
inline constexpr const char* linksTitle = "Como abrir os links";
inline constexpr const char* linksHelp =
    "Um toque num widget abre a parte correspondente do Zelto. Se nenhum app abre estes links, instale o "
    "Zelto, ou escolha outro app com este comando no terminal:";
inline constexpr const char* linksCommand = "xdg-mime default APP.desktop x-scheme-handler/zelto";

inline constexpr const char* addWidgets = "Adicionar widgets…";
inline constexpr const char* reload = "Recarregar";
inline constexpr const char* remove = "Remover";
inline constexpr const char* moveTo = "Mover para";
inline constexpr const char* howToOpen = "Como abrir…";
inline constexpr const char* undo = "Desfazer";

inline constexpr const char* noHandlerFirst = "Nenhum app abre este link. No menu: “Como abrir…”";
inline constexpr const char* noHandler = "Nenhum app abre este link";
inline constexpr const char* handlerFailed = "O app não pôde ser aberto";
inline constexpr const char* noRoom = "Não há espaço aqui";
inline constexpr const char* locked = "As posições estão bloqueadas";
inline constexpr const char* notOffered = "Este widget não é oferecido";
inline constexpr const char* noAnswer = "A extensão de widgets não responde";
inline constexpr const char* layoutBroken =
    "O arquivo desktop.json estava inválido e foi guardado; vale a última versão boa";
inline constexpr const char* notAllHaveRoom = "Nem todos os widgets cabem nesta tela";

constexpr const char* nameOf(widgetkit::WidgetFamily family) {
    switch (family) {
        case widgetkit::WidgetFamily::systemSmall: return "Pequeno";
        case widgetkit::WidgetFamily::systemMedium: return "Médio";
        case widgetkit::WidgetFamily::systemLarge: return "Grande";
    }
    return "";
}

/// A monitor by its connector, or by its number where it has none.
inline std::string monitorName(const std::string& connector, std::size_t index) {
    return connector.empty() ? "Tela " + std::to_string(index + 1) : connector;
}

/// "DP-1, coluna 3, linha 1"; tiles count from 0, people from 1.
inline std::string place(const std::string& monitor, std::int64_t column, std::int64_t row) {
    return monitor + ", coluna " + std::to_string(column + 1) + ", linha " + std::to_string(row + 1);
}

inline std::string notSaved(const std::string& reason) {
    return "As mudanças não podem ser gravadas: " + reason;
}

inline std::string added(const std::string& name, const std::string& place) {
    return name + ": adicionado em " + place;
}

inline std::string moved(const std::string& name, const std::string& place) {
    return name + ": movido para " + place;
}

inline std::string removed(const std::string& name) {
    return name + ": removido";
}

inline std::string resized(const std::string& name, widgetkit::WidgetFamily family) {
    return name + ": tamanho " + nameOf(family);
}

/// An age in the largest unit of which there is one: "há 25 min", "há 3 h", "há 2 d".
inline std::string age(double seconds) {
    const auto minutes = static_cast<std::int64_t>(seconds / 60);
    if (minutes < 1) return "há instantes";
    if (minutes < 60) return "há " + std::to_string(minutes) + " min";
    if (minutes < 48 * 60) return "há " + std::to_string(minutes / 60) + " h";
    return "há " + std::to_string(minutes / (24 * 60)) + " d";
}

}  // namespace zelto::desktop::strings
