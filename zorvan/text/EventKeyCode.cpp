#include <zorvan/text/EventKeyCode.h>

namespace zorvan {

constinit EventKeyCode EventKeyCode::digit0(29);
constinit EventKeyCode EventKeyCode::digit1(18);
constinit EventKeyCode EventKeyCode::digit2(19);
constinit EventKeyCode EventKeyCode::digit3(20);
constinit EventKeyCode EventKeyCode::digit4(21);
constinit EventKeyCode EventKeyCode::digit5(23);
constinit EventKeyCode EventKeyCode::digit6(22);
constinit EventKeyCode EventKeyCode::digit7(26);
constinit EventKeyCode EventKeyCode::digit8(28);
constinit EventKeyCode EventKeyCode::digit9(25);

constinit EventKeyCode EventKeyCode::letterA(12);
constinit EventKeyCode EventKeyCode::letterB(11);
constinit EventKeyCode EventKeyCode::letterC(8);
constinit EventKeyCode EventKeyCode::letterD(2);
constinit EventKeyCode EventKeyCode::letterE(14);
constinit EventKeyCode EventKeyCode::letterF(3);
constinit EventKeyCode EventKeyCode::letterG(5);
constinit EventKeyCode EventKeyCode::letterH(4);
constinit EventKeyCode EventKeyCode::letterI(34);
constinit EventKeyCode EventKeyCode::letterJ(38);
constinit EventKeyCode EventKeyCode::letterK(40);
constinit EventKeyCode EventKeyCode::letterL(37);
constinit EventKeyCode EventKeyCode::letterM(41);
constinit EventKeyCode EventKeyCode::letterN(45);
constinit EventKeyCode EventKeyCode::letterO(31);
constinit EventKeyCode EventKeyCode::letterP(35);
constinit EventKeyCode EventKeyCode::letterQ(0);
constinit EventKeyCode EventKeyCode::letterR(15);
constinit EventKeyCode EventKeyCode::letterS(1);
constinit EventKeyCode EventKeyCode::letterT(17);
constinit EventKeyCode EventKeyCode::letterU(32);
constinit EventKeyCode EventKeyCode::letterV(9);
constinit EventKeyCode EventKeyCode::letterW(6);
constinit EventKeyCode EventKeyCode::letterX(7);
constinit EventKeyCode EventKeyCode::letterY(16);
constinit EventKeyCode EventKeyCode::letterZ(13);

constinit EventKeyCode EventKeyCode::space(49);
constinit EventKeyCode EventKeyCode::escape(53);
constinit EventKeyCode EventKeyCode::enter(36);
constinit EventKeyCode EventKeyCode::delete_(51);
constinit EventKeyCode EventKeyCode::tab(48);
constinit EventKeyCode EventKeyCode::leftArrow(123);
constinit EventKeyCode EventKeyCode::rightArrow(124);
constinit EventKeyCode EventKeyCode::upArrow(126);
constinit EventKeyCode EventKeyCode::downArrow(125);

} // namespace zorvan
