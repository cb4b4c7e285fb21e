#pragma once

#include "widgetkit/WidgetFamily.hpp"

// What the desktop says to people.
namespace zelto::desktop::strings {

inline constexpr const char* galleryTitle = "Galeria de widgets";
inline constexpr const char* galleryHint = "Clique ou arraste um widget para a área de trabalho.";
inline constexpr const char* galleryEmpty = "A extensão de widgets ainda não respondeu.";
inline constexpr const char* addWidgets = "Adicionar widgets…";
inline constexpr const char* reload = "Recarregar";
inline constexpr const char* remove = "Remover";
inline constexpr const char* noHandler = "Nenhum app abre este link";
inline constexpr const char* noRoom = "Não há espaço aqui";

constexpr const char* nameOf(widgetkit::WidgetFamily family) {
    switch (family) {
        case widgetkit::WidgetFamily::systemSmall: return "Pequeno";
        case widgetkit::WidgetFamily::systemMedium: return "Médio";
        case widgetkit::WidgetFamily::systemLarge: return "Grande";
    }
    return "";
}

}  // namespace zelto::desktop::strings
