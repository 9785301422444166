#pragma once

#include <zorvan/text/EventKeyCode.h>

#include <QtCore/qnamespace.h>
#include <algorithm>
#include <span>

namespace zorvan::internal {

/// A key of Qt that `EventKeyCode` names.
struct NamedKey {
    Qt::Key key;
    const EventKeyCode* code;
};

/// All of them.
inline std::span<const NamedKey> namedKeys() {
    using K = EventKeyCode;
    static const NamedKey keys[] = {{Qt::Key_0, &K::digit0},          {Qt::Key_1, &K::digit1},
                                    {Qt::Key_2, &K::digit2},          {Qt::Key_3, &K::digit3},
                                    {Qt::Key_4, &K::digit4},          {Qt::Key_5, &K::digit5},
                                    {Qt::Key_6, &K::digit6},          {Qt::Key_7, &K::digit7},
                                    {Qt::Key_8, &K::digit8},          {Qt::Key_9, &K::digit9},
                                    {Qt::Key_A, &K::letterA},         {Qt::Key_B, &K::letterB},
                                    {Qt::Key_C, &K::letterC},         {Qt::Key_D, &K::letterD},
                                    {Qt::Key_E, &K::letterE},         {Qt::Key_F, &K::letterF},
                                    {Qt::Key_G, &K::letterG},         {Qt::Key_H, &K::letterH},
                                    {Qt::Key_I, &K::letterI},         {Qt::Key_J, &K::letterJ},
                                    {Qt::Key_K, &K::letterK},         {Qt::Key_L, &K::letterL},
                                    {Qt::Key_M, &K::letterM},         {Qt::Key_N, &K::letterN},
                                    {Qt::Key_O, &K::letterO},         {Qt::Key_P, &K::letterP},
                                    {Qt::Key_Q, &K::letterQ},         {Qt::Key_R, &K::letterR},
                                    {Qt::Key_S, &K::letterS},         {Qt::Key_T, &K::letterT},
                                    {Qt::Key_U, &K::letterU},         {Qt::Key_V, &K::letterV},
                                    {Qt::Key_W, &K::letterW},         {Qt::Key_X, &K::letterX},
                                    {Qt::Key_Y, &K::letterY},         {Qt::Key_Z, &K::letterZ},
                                    {Qt::Key_Space, &K::space},       {Qt::Key_Escape, &K::escape},
                                    {Qt::Key_Tab, &K::tab},           {Qt::Key_Return, &K::enter},
                                    {Qt::Key_Backspace, &K::delete_}, {Qt::Key_Left, &K::leftArrow},
                                    {Qt::Key_Right, &K::rightArrow},  {Qt::Key_Up, &K::upArrow},
                                    {Qt::Key_Down, &K::downArrow}};
    return keys;
}

/// Null for a key that has no name there.
inline const EventKeyCode* codeOfKey(int key) {
    const auto keys = namedKeys();
    const auto found = std::find_if(keys.begin(), keys.end(),
                                    [key](const NamedKey& named) { return named.key == key; });
    return found == keys.end() ? nullptr : found->code;
}

} // namespace zorvan::internal
