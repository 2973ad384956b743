#include "controls/Labels.h"

const CHAR16* const gTemperatureLabels[14] = {
    u"40\u00F8C", u"45\u00F8C", u"50\u00F8C", u"55\u00F8C", u"60\u00F8C", u"65\u00F8C",  u"70\u00F8C",
    u"75\u00F8C", u"80\u00F8C", u"85\u00F8C", u"90\u00F8C", u"95\u00F8C", u"100\u00F8C", nullptr,
};

const CHAR16* const gDutyLabels8[9] = {
    u"12.5%", u"25%", u"37.5%", u"50%", u"62.5%", u"75%", u"87.5%", u"100%", nullptr,
};

const CHAR16* const gDutyLabels6[7] = {
    u"50%", u"60%", u"70%", u"80%", u"90%", u"100%", nullptr,
};
