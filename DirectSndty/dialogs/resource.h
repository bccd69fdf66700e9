#pragma once
// Identifiers of the library's dialog templates and their controls.

// Labels and group boxes that no code refers to (MFC's afxres.h has the same).
#ifndef IDC_STATIC
#define IDC_STATIC (-1)
#endif

#define IDD_DLG_DSND_INIT_INFO          7016
#define IDC_CMB_DEVICE_ID               7017
#define IDC_RICHEDIT_DEVICE_INFO        7018
#define IDD_DLG_DSND_CAPS               7019
#define IDC_EDIT_DEVICE_COUNT           7020
#define IDD_DLG_DSND_COOPERATIVE_LEVEL  7021
#define IDC_RICHEDIT_CAPS               7022
#define IDD_DLG_DSND_PRIMARY_WFX        7023
#define IDC_CMB_PRIMARY_CHANNEL         7010
#define IDC_CMB_PRIMARY_SAMPLING_RATE   7011
#define IDC_CMB_PRIMARY_BITS_PER_SAMPLE 7012
#define IDD_DLG_SPEAKER_CONFIG          7025

#define IDC_RADIO_COOP_NORMAL           10000
#define IDC_RADIO_COOP_PRIORITY         10001
#define IDC_RADIO_COOP_PRIMARY          10002
#define IDC_BTN_COOP_APPLY              10003
#define IDC_BTN_COOP_PLAY               10004

// Speaker configuration radio buttons, one group in this order.
#define IDC_RADIO_SPEAKER_HEADPHONE     10100
#define IDC_RADIO_SPEAKER_MONO          10101
#define IDC_RADIO_SPEAKER_QUAD          10102
#define IDC_RADIO_SPEAKER_SURROUND      10103
#define IDC_RADIO_SPEAKER_STEREO_MIN    10104
#define IDC_RADIO_SPEAKER_STEREO_NARROW 10105
#define IDC_RADIO_SPEAKER_STEREO_WIDE   10106
#define IDC_RADIO_SPEAKER_STEREO_MAX    10107
