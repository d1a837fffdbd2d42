#pragma once

/// The handlers of all commands, one a number; the table in commands/command_table.cpp names them once more. Where each
/// is defined: `git grep -w C_17 src/commands`.

#include "engine/outcome.h"
#include "engine/step.h"

namespace talm_flow::commands {

using engine::Outcome;
using engine::Step;

Outcome C_1(Step& step);
Outcome C_2(Step& step);
Outcome C_3(Step& step);
Outcome C_4(Step& step);
Outcome C_5(Step& step);
Outcome C_6(Step& step);
Outcome C_7(Step& step);
Outcome C_8(Step& step);
Outcome C_9(Step& step);
Outcome C_10(Step& step);
Outcome C_11(Step& step);
Outcome C_12(Step& step);
Outcome C_13(Step& step);
Outcome C_14(Step& step);
Outcome C_15(Step& step);
Outcome C_16(Step& step);
Outcome C_17(Step& step);
Outcome C_18(Step& step);
Outcome C_19(Step& step);
Outcome C_20(Step& step);
Outcome C_21(Step& step);
Outcome C_22(Step& step);
Outcome C_23(Step& step);
Outcome C_24(Step& step);
Outcome C_25(Step& step);
Outcome C_26(Step& step);
Outcome C_27(Step& step);
Outcome C_28(Step& step);
Outcome C_29(Step& step);
Outcome C_30(Step& step);
Outcome C_31(Step& step);
Outcome C_32(Step& step);
Outcome C_33(Step& step);
Outcome C_34(Step& step);
Outcome C_35(Step& step);
Outcome C_36(Step& step);
Outcome C_37(Step& step);
Outcome C_38(Step& step);
Outcome C_39(Step& step);
Outcome C_40(Step& step);
Outcome C_41(Step& step);
Outcome C_42(Step& step);
Outcome C_43(Step& step);
Outcome C_44(Step& step);
Outcome C_45(Step& step);
Outcome C_46(Step& step);
Outcome C_47(Step& step);
Outcome C_48(Step& step);
Outcome C_49(Step& step);
Outcome C_50(Step& step);
Outcome C_51(Step& step);
Outcome C_52(Step& step);
Outcome C_53(Step& step);
Outcome C_54(Step& step);
Outcome C_55(Step& step);
Outcome C_56(Step& step);
Outcome C_57(Step& step);
Outcome C_58(Step& step);
Outcome C_59(Step& step);
Outcome C_60(Step& step);
Outcome C_61(Step& step);
Outcome C_62(Step& step);
Outcome C_63(Step& step);
Outcome C_64(Step& step);
Outcome C_65(Step& step);
Outcome C_66(Step& step);
Outcome C_67(Step& step);
Outcome C_68(Step& step);
Outcome C_69(Step& step);
Outcome C_70(Step& step);
Outcome C_71(Step& step);
Outcome C_72(Step& step);
Outcome C_73(Step& step);
Outcome C_74(Step& step);
Outcome C_75(Step& step);
Outcome C_76(Step& step);
Outcome C_77(Step& step);
Outcome C_78(Step& step);
Outcome C_79(Step& step);
Outcome C_80(Step& step);
Outcome C_81(Step& step);
Outcome C_82(Step& step);
Outcome C_83(Step& step);
Outcome C_84(Step& step);
Outcome C_85(Step& step);
Outcome C_86(Step& step);
Outcome C_87(Step& step);
Outcome C_88(Step& step);
Outcome C_89(Step& step);
Outcome C_90(Step& step);
Outcome C_91(Step& step);
Outcome C_92(Step& step);
Outcome C_93(Step& step);
Outcome C_94(Step& step);
Outcome C_95(Step& step);
Outcome C_96(Step& step);
Outcome C_97(Step& step);
Outcome C_98(Step& step);

}  // namespace talm_flow::commands
