/**
 * Parameter ids and the constants of their enumerations.
 *
 * The comment on each id gives the parameter's label, kind and unit. Numbers are 32 bits wide unless the kind
 * says otherwise; floating point numbers have 64 bits. Times in µs have a resolution of 0.008 (8 ns).
 */
#ifndef VEXO_FG_PARAMETERS_H
#define VEXO_FG_PARAMETERS_H

enum FgParameterId {
    /* Camera Link HS */
    FG_PIXELFORMAT = 200368, /**< Pixel Format: enumeration */
    FG_LINEORDER = 920000,   /**< Line order: enumeration */
    /* Camera Link HS / Pulse Message Trigger Mapping */
    FG_CLHS_TRIGGER_PULSE_MESSAGE = 200401, /**< CLHS Pulse Message: enumeration */
    /* Sensor Geometry */
    FG_VANTAGEPOINT = 300112, /**< Vantage Point: enumeration */
    FG_SENSORWIDTH = 200220,  /**< Sensor Width: unsigned, pixel */
    FG_SENSORHEIGHT = 200221, /**< Sensor Height: unsigned, pixel */
    /* ROI */
    FG_WIDTH = 100,   /**< Width: unsigned, pixel */
    FG_HEIGHT = 200,  /**< Height: unsigned, pixel */
    FG_XOFFSET = 300, /**< XOffset: unsigned, pixel */
    FG_YOFFSET = 400, /**< YOffset: unsigned, pixel */
    /* Digital I/O / Camera */
    FG_TRIGGERCAMERA_SOURCE = 200338,   /**< Camera Trigger Source: enumeration */
    FG_TRIGGERCAMERA_POLARITY = 200354, /**< Camera Trigger Output Polarity: enumeration */
    /* Digital I/O / GPO */
    FG_TRIGGEROUT_GPO_0_SOURCE = 200384,         /**< GPO 0 Source: enumeration */
    FG_TRIGGEROUT_GPO_0_POLARITY = 200410,       /**< GPO 0 Polarity: enumeration */
    FG_TRIGGEROUT_GPO_1_SOURCE = 200385,         /**< GPO 1 Source: enumeration */
    FG_TRIGGEROUT_GPO_1_POLARITY = 200411,       /**< GPO 1 Polarity: enumeration */
    FG_TRIGGEROUT_GPO_2_SOURCE = 200386,         /**< GPO 2 Source: enumeration */
    FG_TRIGGEROUT_GPO_2_POLARITY = 200412,       /**< GPO 2 Polarity: enumeration */
    FG_TRIGGEROUT_GPO_3_SOURCE = 200387,         /**< GPO 3 Source: enumeration */
    FG_TRIGGEROUT_GPO_3_POLARITY = 200413,       /**< GPO 3 Polarity: enumeration */
    FG_TRIGGEROUT_GPO_4_SOURCE = 200388,         /**< GPO 4 Source: enumeration */
    FG_TRIGGEROUT_GPO_4_POLARITY = 200414,       /**< GPO 4 Polarity: enumeration */
    FG_TRIGGEROUT_GPO_5_SOURCE = 200389,         /**< GPO 5 Source: enumeration */
    FG_TRIGGEROUT_GPO_5_POLARITY = 200415,       /**< GPO 5 Polarity: enumeration */
    FG_TRIGGEROUT_GPO_6_SOURCE = 200390,         /**< GPO 6 Source: enumeration */
    FG_TRIGGEROUT_GPO_6_POLARITY = 200416,       /**< GPO 6 Polarity: enumeration */
    FG_TRIGGEROUT_GPO_7_SOURCE = 200391,         /**< GPO 7 Source: enumeration */
    FG_TRIGGEROUT_GPO_7_POLARITY = 200417,       /**< GPO 7 Polarity: enumeration */
    FG_TRIGGEROUT_FRONT_GPO_0_SOURCE = 200392,   /**< Front GPO 0 Source: enumeration */
    FG_TRIGGEROUT_FRONT_GPO_0_POLARITY = 200418, /**< Front GPO 0 Polarity: enumeration */
    FG_TRIGGEROUT_FRONT_GPO_1_SOURCE = 200393,   /**< Front GPO 1 Source: enumeration */
    FG_TRIGGEROUT_FRONT_GPO_1_POLARITY = 200419, /**< Front GPO 1 Polarity: enumeration */
    FG_DIGIO_OUTPUT =
        14020, /**< Legacy Digital Output: signed; bit 0 is GPO 3, bit 1 GPO 7; -1: other signals */
    /* Digital I/O / GPI */
    FG_DIGIO_INPUT =
        14010, /**< Digital Input: unsigned, read-only; bits 0 to 7 are GPI 0 to 7, bits 8 to 11 front GPI 0 to 3 */
    /* Digital I/O / Event Source */
    FG_CUSTOM_SIGNAL_EVENT_0_SOURCE = 200440,   /**< Custom Signal Event 0 Source: enumeration */
    FG_CUSTOM_SIGNAL_EVENT_0_POLARITY = 200441, /**< Custom Signal Event 0 Polarity: enumeration */
    FG_CUSTOM_SIGNAL_EVENT_1_SOURCE = 200442,   /**< Custom Signal Event 1 Source: enumeration */
    FG_CUSTOM_SIGNAL_EVENT_1_POLARITY = 200443, /**< Custom Signal Event 1 Polarity: enumeration */
    /* Line Trigger / ExSync */
    FG_LINETRIGGERMODE = 8102, /**< Line Trigger Mode: enumeration */
    FG_EXSYNCON = 8300,        /**< Exsync Enable: enumeration */
    /* Line Trigger / ExSync / Line Trigger Input */
    FG_LINETRIGGERINSRC = 8112,        /**< Source A: enumeration */
    FG_LINETRIGGERINPOLARITY = 8115,   /**< Input Polarity: enumeration */
    FG_LINETRIGGERDEBOUNCING = 110063, /**< Debouncing Time: floating point, µs */
    /* Line Trigger / ExSync / Line Trigger Input / Downscale */
    FG_LINE_DOWNSCALE = 24040,     /**< Downscale: unsigned, pulses */
    FG_LINE_DOWNSCALEINIT = 24050, /**< Phase: unsigned, pulses */
    /* Line Trigger / ExSync / Shaft Encoder A/B Filter */
    FG_SHAFTENCODERON = 9110,                     /**< Enable: enumeration */
    FG_SHAFTENCODERMODE = 110065,                 /**< Shaft Encoder Mode: enumeration */
    FG_SHAFTENCODERINSRC = 9100,                  /**< Source B: enumeration */
    FG_SHAFTENCODERLEADING = 9120,                /**< Leading Signal: enumeration */
    FG_SHAFTENCODER_COMPENSATION_ENABLE = 200370, /**< Compensation Enable: enumeration */
    FG_SHAFTENCODER_COMPENSATION_COUNT = 200371,  /**< Compensation Count: unsigned, pulses */
    /* Line Trigger / ExSync / ExSync Output */
    FG_LINEPERIODE = 96,        /**< Period: floating point, µs */
    FG_LINEEXPOSURE = 10030,    /**< Exposure Time: floating point, µs */
    FG_EXSYNCPOLARITY = 8420,   /**< Polarity: enumeration */
    FG_LINETRIGGERDELAY = 8900, /**< Delay->Exsync: floating point, µs */
    /* Image Trigger / Flash */
    FG_IMGTRIGGERMODE = 8104,            /**< Mode: enumeration */
    FG_IMGTRIGGERON = 8106,              /**< Image Trigger Enable: enumeration */
    FG_FLASHON = 8600,                   /**< Flash Enable: enumeration */
    FG_IMGTRIGGER_ASYNC_HEIGHT = 110067, /**< Async Image Trigger Height: unsigned, lines */
    FG_IMGTRIGGER_IS_BUSY = 110066,      /**< Image Trigger is Busy: enumeration, read-only */
    /* Image Trigger / Flash / Image Trigger Input */
    FG_IMGTRIGGERINSRC = 8113,        /**< Source: enumeration */
    FG_IMGTRIGGERINPOLARITY = 8116,   /**< Polarity: enumeration */
    FG_IMGTRIGGERGATEDELAY = 8118,    /**< Gate Delay: unsigned, lines */
    FG_IMGTRIGGERDEBOUNCING = 110064, /**< Debouncing Time: floating point, µs */
    FG_STROBEPULSEDELAY = 8700,       /**< Flash Delay->Image Trigger: unsigned, lines */
    /* Image Trigger / Flash / Image Trigger Input / Flash */
    FG_FLASH_POLARITY = 24060, /**< Flash Polarity: enumeration */
    /* Image Trigger / Flash / Image Trigger Input / Software Trigger */
    FG_SENDSOFTWARETRIGGER = 8800, /**< Software Trigger Pulse: enumeration */
    FG_SETSOFTWARETRIGGER = 8801,  /**< Software Trigger State: enumeration */
    /* Signal Analyzer */
    FG_SIGNAL_ANALYZER_0_SOURCE = 200420,   /**< Signal Analyzer 0 Source: enumeration */
    FG_SIGNAL_ANALYZER_0_POLARITY = 200421, /**< Signal Analyzer 0 Polarity: enumeration */
    FG_SIGNAL_ANALYZER_0_PERIOD_CURRENT =
        200422, /**< Signal Analyzer 0 Current Period: floating point, µs, read-only */
    FG_SIGNAL_ANALYZER_0_PERIOD_MAX =
        200423, /**< Signal Analyzer 0 Max Period: floating point, µs, read-only */
    FG_SIGNAL_ANALYZER_0_PERIOD_MIN =
        200424, /**< Signal Analyzer 0 Min Period: floating point, µs, read-only */
    FG_SIGNAL_ANALYZER_0_PULSE_COUNT =
        200425, /**< Signal Analyzer 0 Pulse Count: unsigned, pulses (its record says µs), read-only */
    FG_SIGNAL_ANALYZER_1_SOURCE = 200430,   /**< Signal Analyzer 1 Source: enumeration */
    FG_SIGNAL_ANALYZER_1_POLARITY = 200431, /**< Signal Analyzer 1 Polarity: enumeration */
    FG_SIGNAL_ANALYZER_1_PERIOD_CURRENT =
        200432, /**< Signal Analyzer 1 Current Period: floating point, µs, read-only */
    FG_SIGNAL_ANALYZER_1_PERIOD_MAX =
        200433, /**< Signal Analyzer 1 Max Period: floating point, µs, read-only */
    FG_SIGNAL_ANALYZER_1_PERIOD_MIN =
        200434, /**< Signal Analyzer 1 Min Period: floating point, µs, read-only */
    FG_SIGNAL_ANALYZER_1_PULSE_COUNT =
        200435, /**< Signal Analyzer 1 Pulse Count: unsigned, pulses (its record says µs), read-only */
    FG_SIGNAL_ANALYZER_PULSE_COUNT_DIFFERENCE = 200439, /**< Signal Analyzer Pulse Count Difference: signed 64
                                                           bits, pulses (its record says µs), read-only */
    FG_SIGNAL_ANALYZER_CLEAR = 200438,                  /**< Signal Analyzer Clear: enumeration */
    /* Overflow */
    FG_FILLLEVEL = 110086, /**< Buffer fill level: unsigned, %, read-only */
    FG_OVERFLOW = 110087,  /**< Buffer overflow: unsigned, read-only */
    /* Image Selector */
    FG_IMG_SELECT_PERIOD = 25110, /**< Image select period: unsigned, image */
    FG_IMG_SELECT = 25111,        /**< Image select: unsigned, image */
    /* White Balance */
    FG_SCALINGFACTOR_RED = 13000,   /**< Red Gain: floating point */
    FG_SCALINGFACTOR_BLUE = 13010,  /**< Blue Gain: floating point */
    FG_SCALINGFACTOR_GREEN = 13030, /**< Green Gain: floating point */
    /* Lookup Table */
    FG_LUT_ENABLE = 12030,       /**< Enabled: enumeration */
    FG_LUT_TYPE = 110017,        /**< Type: enumeration */
    FG_LUT_VALUE_RED = 300009,   /**< Red LUT Values: array of unsigned */
    FG_LUT_VALUE_GREEN = 300010, /**< Green LUT Values: array of unsigned */
    FG_LUT_VALUE_BLUE = 300011,  /**< Blue LUT Values: array of unsigned */
    FG_LUT_CUSTOM_FILE = 300000, /**< Load File: text; read at once, or when the type becomes custom */
    FG_LUT_SAVE_FILE = 110021,   /**< Save File: text; written at each set */
    /* Lookup Table / Applet Properties */
    FG_LUT_IMPLEMENTATION_TYPE = 300006, /**< LUT Implementation Type: enumeration, read-only */
    FG_LUT_IN_BITS = 300007,             /**< LUT In Bits: unsigned, bit, read-only */
    FG_LUT_OUT_BITS = 300008,            /**< LUT Out Bits: unsigned, bit, read-only */
    /* Processing */
    FG_PROCESSING_OFFSET = 300004, /**< Offset: floating point */
    FG_PROCESSING_GAIN = 300002,   /**< Gain: floating point */
    FG_PROCESSING_GAMMA = 300003,  /**< Gamma: floating point */
    FG_PROCESSING_INVERT = 300005, /**< Invert: enumeration */
    /* Output Format */
    FG_FORMAT = 700,                    /**< Output Format: enumeration */
    FG_BITALIGNMENT = 4010,             /**< Alignment: enumeration */
    FG_PIXELDEPTH = 4000,               /**< Pixel Depth: unsigned, bit, read-only */
    FG_CUSTOM_BIT_SHIFT_RIGHT = 200396, /**< Bit Shift Right: unsigned, bit */
    /* Camera Simulator */
    FG_CAMERASIMULATOR_ENABLE = 30099,          /**< Image Source: enumeration */
    FG_CAMERASIMULATOR_WIDTH = 30102,           /**< Width: unsigned, pixel */
    FG_CAMERASIMULATOR_LINE_GAP = 30105,        /**< Line Gap: unsigned, pixel */
    FG_CAMERASIMULATOR_HEIGHT = 200322,         /**< Height: unsigned, pixel */
    FG_CAMERASIMULATOR_FRAME_GAP = 200325,      /**< Frame Gap: unsigned, pixel */
    FG_CAMERASIMULATOR_PATTERN = 200326,        /**< Pattern: enumeration */
    FG_CAMERASIMULATOR_PATTERN_OFFSET = 200356, /**< Pattern Offset: unsigned, pixel value */
    FG_CAMERASIMULATOR_ROLL = 200327,           /**< Roll: enumeration */
    FG_CAMERASIMULATOR_SELECT_MODE = 200328,    /**< Speed Mode: enumeration */
    FG_CAMERASIMULATOR_PIXEL_FREQUENCY = 30106, /**< Pixel Frequency: floating point, MHz */
    FG_CAMERASIMULATOR_LINERATE = 200329,       /**< Line Rate: floating point, Hz */
    FG_CAMERASIMULATOR_FRAMERATE = 200352,      /**< Framerate: floating point, Hz */
    FG_CAMERASIMULATOR_TRIGGER_MODE = 200355,   /**< Trigger Mode: enumeration */
    FG_CAMERASIMULATOR_ACTIVE = 30101,          /**< Active Parts: unsigned, pixel, read-only */
    FG_CAMERASIMULATOR_PASSIVE = 30100,         /**< Passive Parts: unsigned, pixel, read-only */
    /* Miscellaneous */
    FG_TIMEOUT = 600,             /**< Timeout: unsigned, seconds */
    FG_APPLET_VERSION = 24020,    /**< Applet version: unsigned, read-only */
    FG_APPLET_REVISION = 24030,   /**< Applet revision: unsigned, read-only */
    FG_APPLET_ID = 24010,         /**< Applet Id: text, read-only */
    FG_APPLET_BUILD_TIME = 24011, /**< Build Time: text, read-only */
    FG_TSL_FILE = 24108,          /**< TSL file: text, read-only */
    FG_DMASTATUS = 24092,         /**< DMA Status: unsigned, read-only; 0 stopped, 1 started */
    FG_CAMSTATUS = 2000,          /**< Camera Status: unsigned, read-only; bit 0 of the next */
    FG_CAMSTATUS_EXTENDED =
        2050, /**< Camera Status Extended: unsigned, read-only; bits: 0 pixel clock, 1 line valid, 2 frame valid, 3 camera control, 4 external trigger, 5 overflow, 6 and 7 fill level in quarters */
    FG_SYSTEMMONITOR_FPGA_TEMPERATURE = 200341,   /**< FGPA Temperature: floating point, Celsius, read-only */
    FG_SYSTEMMONITOR_FPGA_VCC_INT = 200342,       /**< FGPA Vcc Int: floating point, V, read-only */
    FG_SYSTEMMONITOR_FPGA_VCC_AUX = 200343,       /**< FGPA Vcc Aux: floating point, V, read-only */
    FG_SYSTEMMONITOR_FPGA_VCC_BRAM = 200372,      /**< FGPA Vcc BRAM: floating point, V, read-only */
    FG_SYSTEMMONITOR_CURRENT_LINK_WIDTH = 200373, /**< Current Link Width: unsigned, lanes, read-only */
    FG_SYSTEMMONITOR_CURRENT_LINK_SPEED = 200374, /**< Current Link Speed: floating point, GB/s, read-only */
    FG_SYSTEMMONITOR_PCIE_LINK_GEN2_CAPABLE = 200375, /**< PCIe Link Gen 2 Capable: enumeration, read-only */
    FG_SYSTEMMONITOR_PCIE_LINK_PARTNER_GEN2_CAPABLE =
        200376, /**< PCIe Link Partner Gen 2 Capable: enumeration, read-only */
    FG_SYSTEMMONITOR_PCIE_TRAINED_PAYLOAD_SIZE =
        200377, /**< PCIe Trained Payload Size: unsigned, byte, read-only */
    FG_SYSTEMMONITOR_EXTENSION_CONNECTOR_PRESENT =
        200378, /**< Extension Connector Present: enumeration, read-only */
    FG_ALTERNATIVE_BOARD_DETECTION =
        200381, /**< Alternative Board Detection: enumeration, read-only; on if the design's value is 0 */
    FG_SYSTEMMONITOR_FPGA_DNA = 200349, /**< FPGA DNA: unsigned 64 bits, read-only */
    /* Miscellaneous / Debug */
    FG_DEBUGSOURCE = 900001,     /**< Debug Source: unsigned */
    FG_DEBUGSOURCENAME = 900006, /**< Debug Source Name: text, read-only */
    FG_DEBUGSAVECONFIG = 900013, /**< Debug Save Config: text */
    FG_DEBUG_VERSION = 900020,   /**< Version: text, read-only */
    /* Miscellaneous / Debug / Input */
    FG_DEBUGINENABLE = 900002,   /**< Debug Input Mode: enumeration */
    FG_DEBUGFILE = 900000,       /**< Debug File: text of at most 8191 characters */
    FG_DEBUGINSERT = 900003,     /**< Debug Insert Image: enumeration */
    FG_DEBUGWRITEPIXEL = 900010, /**< Debug Write Pixel: unsigned 64 bits */
    FG_DEBUGWRITEFLAG = 900011,  /**< Debug Write Flag: enumeration */
    FG_DEBUGREADY = 900012,      /**< Debug Write Ready: enumeration, read-only */
    /* Miscellaneous / Debug / Output */
    FG_DEBUGOUTENABLE = 900004, /**< Debug Output Mode: enumeration */
    FG_DEBUGOUTXPOS = 900007,   /**< Debug Output XPosition: unsigned, pixel, read-only */
    FG_DEBUGOUTYPOS = 900008,   /**< Debug Output YPosition: unsigned, pixel, read-only */
    FG_DEBUGOUTPIXEL = 900009,  /**< Debug Output Pixel: unsigned, pixel, read-only */
    /* Without a record in the parameter tree */
    FG_TRANSFER_LEN = 5210,    /**< read from the runtime */
    FG_NR_OF_PROCESSES = 3070, /**< number of processes, 1; read with any DMA channel */
    FG_NR_OF_DMAS = 3050,      /**< read from the runtime */
    FG_NR_OF_CAMS = 3060,      /**< read from the runtime */
    FG_DMA_PORT = 3080,        /**< read from the runtime */
    FG_CAM_PORT = 3090,        /**< read from the runtime */
    FG_APC_STOP_TIMEOUT = 601, /**< read from the runtime */
    FG_PARAM_DESCR = 24114     /**< text: a set takes a parameter's name, a get returns its description */
};

/** Constants of the enumerations. */
enum FgParameterConstant {
    /* Yes and no */
    FG_YES = 1, /**< Yes */
    FG_NO = 0,  /**< No */
    /* Switches */
    FG_ON = 1,  /**< On */
    FG_OFF = 0, /**< Off */
    /* Commands */
    FG_APPLY = 1, /**< Apply */
    /* FG_DEBUGWRITEFLAG */
    FG_ENDOFLINE = 0,  /**< EndOfLine */
    FG_ENDOFFRAME = 1, /**< EndOfFrame */
    /* FG_PIXELFORMAT */
    RGB8 = 1025,  /**< RGB 8bit */
    RGB10 = 1026, /**< RGB 10bit */
    RGB12 = 1027, /**< RGB 12bit */
    RGB14 = 1028, /**< RGB 14bit */
    RGB16 = 1029, /**< RGB 16bit */
    /* FG_LINEORDER */
    FG_LINEORDER_RGB = 0, /**< RGB */
    FG_LINEORDER_BGR = 1, /**< BGR */
    FG_LINEORDER_RBG = 2, /**< RBG */
    FG_LINEORDER_BRG = 3, /**< BRG */
    FG_LINEORDER_GBR = 4, /**< GBR */
    FG_LINEORDER_GRB = 5, /**< GRB */
    /* FG_VANTAGEPOINT */
    FG_VANTAGEPOINT_TOP_LEFT = 0,     /**< Top-Left */
    FG_VANTAGEPOINT_TOP_RIGHT = 1,    /**< Top-Right */
    FG_VANTAGEPOINT_BOTTOM_LEFT = 2,  /**< Bottom-Left */
    FG_VANTAGEPOINT_BOTTOM_RIGHT = 3, /**< Bottom-Right */
    /* FG_FORMAT */
    FG_COL24 = 2, /**< Color 24bit */
    FG_COL30 = 5, /**< Color 30bit */
    FG_COL36 = 7, /**< Color 36bit */
    FG_COL42 = 9, /**< Color 42bit */
    FG_COL48 = 6, /**< Color 48bit */
    /* FG_BITALIGNMENT */
    FG_LEFT_ALIGNED = 1,          /**< Left Aligned */
    FG_RIGHT_ALIGNED = 0,         /**< Right Aligned */
    FG_CUSTOM_BIT_SHIFT_MODE = 2, /**< Custom Bit Shift */
    /* FG_CAMERASIMULATOR_ENABLE */
    FG_CAMPORT = 0,         /**< Camera */
    FG_CAMERASIMULATOR = 1, /**< Simulator */
    /* FG_CAMERASIMULATOR_PATTERN */
    FG_HORIZONTAL = 1, /**< Horizontal */
    FG_VERTICAL = 2,   /**< Vertical */
    FG_DIAGONAL = 3,   /**< Diagonal */
    /* FG_CAMERASIMULATOR_SELECT_MODE */
    FG_PIXEL_FREQUENCY = 0, /**< Pixel Frequency */
    FG_LINERATE = 1,        /**< Line Rate */
    FG_FRAMERATE = 2,       /**< Frame Rate */
    /* FG_CAMERASIMULATOR_TRIGGER_MODE */
    SIMULATION_FREE_RUN = 0,        /**< Free Run */
    RISING_EDGE_TRIGGERS_LINE = 8,  /**< Rising Edge Triggers Line */
    RISING_EDGE_TRIGGERS_FRAME = 9, /**< Rising Edge Triggers Frame */
    /* FG_LUT_TYPE */
    LUT_TYPE_PROCESSING = 3, /**< Processor */
    LUT_TYPE_CUSTOM = 0,     /**< User file */
    /* FG_LUT_IMPLEMENTATION_TYPE */
    LUT_IMPLEMENTATION_FULL_LUT = 0, /**< Full LUT */
    LUT_IMPLEMENTATION_KNEELUT = 1,  /**< KneeLUT */
    /* FG_LINETRIGGERMODE */
    GRABBER_CONTROLLED = 1,       /**< Grabber controlled */
    ASYNC_TRIGGER = 2,            /**< Async External Trigger */
    GRABBER_CONTROLLED_GATED = 6, /**< Gated, Grabber controlled */
    ASYNC_GATED = 5,              /**< Gated, External Triggered */
    /* Trigger inputs: FG_LINETRIGGERINSRC, FG_SHAFTENCODERINSRC, FG_IMGTRIGGERINSRC */
    TRGINSRC_GPI_0 = 0,        /**< GPI Trigger Source 0 */
    TRGINSRC_GPI_1 = 1,        /**< GPI Trigger Source 1 */
    TRGINSRC_GPI_2 = 2,        /**< GPI Trigger Source 2 */
    TRGINSRC_GPI_3 = 3,        /**< GPI Trigger Source 3 */
    TRGINSRC_GPI_4 = 4,        /**< GPI Trigger Source 4 (not available on Skyrail) */
    TRGINSRC_GPI_5 = 5,        /**< GPI Trigger Source 5 (not available on Skyrail) */
    TRGINSRC_GPI_6 = 6,        /**< GPI Trigger Source 6 (not available on Skyrail) */
    TRGINSRC_GPI_7 = 7,        /**< GPI Trigger Source 7 (not available on Skyrail) */
    TRGINSRC_FRONT_GPI_0 = 16, /**< Front GPI Trigger Source 0 */
    TRGINSRC_FRONT_GPI_1 = 17, /**< Front GPI Trigger Source 1 */
    TRGINSRC_FRONT_GPI_2 = 18, /**< Front GPI Trigger Source 2 */
    TRGINSRC_FRONT_GPI_3 = 19, /**< Front GPI Trigger Source 3 */
    /* FG_LINETRIGGERINPOLARITY, FG_IMGTRIGGERINPOLARITY */
    HIGH_ON_ZERO_LOW = 1,  /**< Low Active */
    HIGH_ON_ZERO_HIGH = 0, /**< High Active */
    /* FG_SHAFTENCODERMODE */
    FILTER_X1 = 1, /**< Filter x1 */
    FILTER_X2 = 2, /**< Filter x2 */
    FILTER_X4 = 3, /**< Filter x4 */
    /* FG_SHAFTENCODERLEADING */
    SOURCE_A = 0, /**< Source A */
    SOURCE_B = 1, /**< Source B */
    /* Polarities and levels of outputs */
    FG_LOW = 0,  /**< Low Active */
    FG_HIGH = 1, /**< High Active */
    /* FG_IMGTRIGGERMODE, which takes ASYNC_TRIGGER and ASYNC_GATED as well */
    FREE_RUN = 0,                 /**< Free Run */
    ASYNC_TRIGGER_MULTIFRAME = 8, /**< Async Multi Buffer External Trigger */
    ASYNC_GATED_MULTIFRAME = 6,   /**< Gated Multi Buffer, External Triggered */
    /* FG_IMGTRIGGER_IS_BUSY */
    IS_BUSY = 1,     /**< Busy Flag is set */
    IS_NOT_BUSY = 0, /**< Busy Flag is not set */
    /* FG_IMGTRIGGERINSRC only */
    TRGINSOFTWARE = -1, /**< Software Trigger */
    /* Signals that drive outputs, analyzers and custom events */
    GND = 4,                       /**< Gnd */
    VCC = 5,                       /**< Vcc */
    FG_SIGNAL_CAM0_EXSYNC = 2000,  /**< Cam0 Exsync */
    FG_SIGNAL_CAM0_EXSYNC2 = 2001, /**< Cam0 Exsync2 */
    FG_SIGNAL_CAM0_FLASH = 2002,   /**< Cam0 Flash */
    FG_SIGNAL_CAM0_LVAL = 2007,    /**< Cam0 LVAL */
    FG_SIGNAL_CAM0_FVAL = 2008,    /**< Cam0 FVAL */
    FG_SIGNAL_GPI_0 = 1001,        /**< GPI 0 */
    FG_SIGNAL_GPI_1 = 1011,        /**< GPI 1 */
    FG_SIGNAL_GPI_2 = 1021,        /**< GPI 2 */
    FG_SIGNAL_GPI_3 = 1031,        /**< GPI 3 */
    FG_SIGNAL_GPI_4 = 1041,        /**< GPI 4 */
    FG_SIGNAL_GPI_5 = 1051,        /**< GPI 5 */
    FG_SIGNAL_GPI_6 = 1061,        /**< GPI 6 */
    FG_SIGNAL_GPI_7 = 1071,        /**< GPI 7 */
    FG_SIGNAL_FRONT_GPI_0 = 1081,  /**< Front GPI 0 */
    FG_SIGNAL_FRONT_GPI_1 = 1091,  /**< Front GPI 1 */
    FG_SIGNAL_FRONT_GPI_2 = 1101,  /**< Front GPI 2 */
    FG_SIGNAL_FRONT_GPI_3 = 1111,  /**< Front GPI 3 */
    /* Signals of analyzers and custom events only */
    FG_SIGNAL_CAM0_LINE_START = 2100,  /**< Cam0 Line Transfer Start */
    FG_SIGNAL_CAM0_LINE_END = 2101,    /**< Cam0 Line Transfer End */
    FG_SIGNAL_CAM0_FRAME_START = 2102, /**< Cam0 Frame Transfer Start */
    FG_SIGNAL_CAM0_FRAME_END = 2103,   /**< Cam0 Frame Transfer End */
    /* FG_CLHS_TRIGGER_PULSE_MESSAGE */
    FG_PULSE_IMMEDIATE = 1, /**< Pulse Immediate */
    FG_PULSE_WIDTH = 23     /**< Pulse Width */
};

#endif
