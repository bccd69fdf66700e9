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

// Sound buffer dialogs
#define IDD_DLG_DS3D_BUFF_INFO          7002
#define IDD_DLG_DS3D_PARAMETER          7003
#define IDD_DLG_SND_PLAY_CTL            7004
#define IDD_DLG_DT_AVREL_BASIC          7005
#define IDD_DLG_DSND_CREATE_2ND_BUFFER  7027

#define IDC_RICHEDIT_DS3D_INFO          7061

#define IDC_EDIT_DS3D_POS_X             7062
#define IDC_EDIT_DS3D_POS_Y             7063
#define IDC_EDIT_DS3D_POS_Z             7064
#define IDC_EDIT_DS3D_VEL_X             7065
#define IDC_EDIT_DS3D_VEL_Y             7066
#define IDC_EDIT_DS3D_VEL_Z             7067
#define IDC_EDIT_DS3D_CONE_X            7068
#define IDC_EDIT_DS3D_CONE_Y            7069
#define IDC_EDIT_DS3D_CONE_Z            7070
#define IDC_EDIT_DS3D_CONE_INSIDE       7071
#define IDC_EDIT_DS3D_CONE_OUTSIDE      7072
#define IDC_EDIT_DS3D_CONE_VOLUME       7073
#define IDC_EDIT_DS3D_MAX_DISTANCE      7074
#define IDC_EDIT_DS3D_MIN_DISTANCE      7075
#define IDC_CMB_DS3D_MODE               7076
#define IDC_EDIT_LISTENER_POS_X         7077
#define IDC_EDIT_LISTENER_POS_Y         7078
#define IDC_EDIT_LISTENER_POS_Z         7079
#define IDC_BTN_DS3D_TEST               7080
#define IDC_BTN_DS3D_STOP               7081
#define IDC_EDIT_LISTENER_DISTANCE      7082
#define IDC_EDIT_LISTENER_ROLLOFF       7084
#define IDC_EDIT_LISTENER_VEL_X         7086
#define IDC_EDIT_LISTENER_VEL_Y         7088
#define IDC_EDIT_LISTENER_VEL_Z         7090
#define IDC_EDIT_LISTENER_TOP_X         7092
#define IDC_EDIT_LISTENER_TOP_Y         7094
#define IDC_EDIT_LISTENER_TOP_Z         7096
#define IDC_EDIT_LISTENER_FRONT_X       7098
#define IDC_EDIT_LISTENER_FRONT_Y       7100
#define IDC_EDIT_LISTENER_FRONT_Z       7102
#define IDC_EDIT_LISTENER_DOPPLER       7105

#define IDC_SLIDER_PAN                  7083
#define IDC_RADIO_PAN_LEFT              7085
#define IDC_RADIO_PAN_CENTRE            7087
#define IDC_RADIO_PAN_RIGHT             7089
#define IDC_EDIT_PAN_ORIGINAL           7091
#define IDC_EDIT_PAN_NEW                7093
#define IDC_SLIDER_VOLUME               7095
#define IDC_EDIT_VOLUME_ORIGINAL        7097
#define IDC_EDIT_VOLUME_NEW             7099
#define IDC_SLIDER_FREQUENCY            7101
#define IDC_EDIT_FREQUENCY_ORIGINAL     7103
#define IDC_EDIT_FREQUENCY_NEW          7104

// Secondary buffer format and size (CDlgDSndCreate2ndBuffer)
#define IDC_CMB_2ND_CHANNELS            7110
#define IDC_CMB_2ND_SAMPLING_RATE       7111
#define IDC_CMB_2ND_BITS_PER_SAMPLE     7112
#define IDC_EDIT_2ND_BUFFER_BYTES       7113

// Basic sound maker: a tone or a recording (CDlgDTavrelBasic)
#define IDC_RADIO_BASIC_TONE            7120
#define IDC_RADIO_BASIC_RECORDING       7121
#define IDC_EDIT_BASIC_FREQUENCY        7122
#define IDC_EDIT_BASIC_DURATION         7123
#define IDC_EDIT_BASIC_LEVEL            7124
#define IDC_CMB_BASIC_CHANNELS          7125
#define IDC_CMB_BASIC_SAMPLING_RATE     7126
#define IDC_EDIT_BASIC_RECORD_SECONDS   7127
#define IDC_BTN_BASIC_RECORD            7128
#define IDC_STATIC_BASIC_STATUS         7129

// Recording settings dialog
#define IDD_DLG_DSND_CAPTURE_PRO        7000
#define IDC_CHECK_TIME_RECORD           7006
#define IDC_CHECK_SIZE_RECORD           7007
#define IDC_EDIT_RECORD_SECONDS         7008
#define IDC_EDIT_RECORD_BYTES           7009
#define IDC_CMB_RECORD_CHANNEL          7010
#define IDC_CMB_RECORD_SAMPLING_RATE    7011
#define IDC_CMB_RECORD_BITS_PER_SAMPLE  7012
#define IDC_CHECK_TIME_CRITICAL         7013
#define IDC_CHECK_DIRECT_RECORD         7014
#define IDC_CHECK_RECORD_NEW            7015

// Stream recording dialog; its format combos are the recording settings dialog's.
#define IDD_DLG_SOUND_STREAM_RECORD     7001
#define IDC_BTN_STREAM_RECORD           7057
#define IDC_BTN_STREAM_RECORD_STOP      7058
#define IDC_EDIT_STREAM_FILE_NAME       7059
#define IDC_BTN_STREAM_SETUP            7060

// Stream playback dialog ("Huge sound file player")
#define IDD_DLG_SOUND_STREAM_PLAY       7029
#define IDC_BTN_STREAM_OPEN_FILE        7053
#define IDC_BTN_STREAM_PLAY             7055
#define IDC_BTN_STREAM_STOP             7056
