import Lorvane.Models

// One bar for each entry of the level history, oldest at the left.
Bars {
    required property var samples

    spacing: 3
    duration: 80
    heights: samples.map(sample => 3 + sample * 19)
}
