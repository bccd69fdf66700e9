#pragma once
// Resource ids shared by the test program and its resource script.

#define IDD_NUMBERS 100
#define IDD_NOWHERE 999

#define IDC_INT 1001
#define IDC_FLOAT 1002
#define IDC_UINT 1003
#define IDC_TEXT 1004
#define IDC_RADIO_A 1010
#define IDC_CHECK_IN_GROUP 1011
#define IDC_RADIO_B 1012
#define IDC_RADIO_C 1013
#define IDC_RADIO_OTHER 1014
#define IDC_COMBO 1020
#define IDC_SLIDER 1021
#define IDC_PING 1030
