"use strict";
// Points in space: turned, coloured, and measured between.

function zelmBytes(text) {
  const characters = atob(text);
  const bytes = new Uint8Array(characters.length);
  for (let i = 0; i < characters.length; ++i) {
    bytes[i] = characters.charCodeAt(i);
  }
  return bytes.buffer;
}

// A number with as many digits as tell it from its neighbours.
function zelmNumber(value, digits = 6) {
  return Number.isFinite(value) ? String(Number(value.toPrecision(digits))) : "unknown";
}

class ZelmCloud {
  constructor(figure, data) {
    this.data = data;
    this.read();
    this.viewer = new ZelmViewer(figure, "The points in space. Enter picks the point in the middle");
    this.panel = document.querySelector(".cloud-panel");
    this.addPoints();
    this.addMeasuring(figure);
    this.fillPanel();
    this.viewer.button("Reset", () => this.viewer.reset());
    this.viewer.button("As the camera sees it", () => this.viewer.look(new THREE.Vector3(0, 0, 1)));
    this.viewer.button("From above", () => this.viewer.look(new THREE.Vector3(0, 1, 0.001)));
    this.viewer.button("From the side", () => this.viewer.look(new THREE.Vector3(1, 0, 0.001)));
    this.viewer.button("Clear measurement", () => this.clear());
    this.viewer.bar.append(this.words);
    this.viewer.explain(
      "Drag to turn, right button or two fingers to move, wheel to zoom once the view is in use. Click two points to " +
      "measure between them; with keys, Enter picks the point in the middle.");
    this.viewer.show(this.bulk(), new THREE.Vector3(0.35, 0.3, 1));
  }

  // Positions, in the plate's frame and as they are drawn, and the numbers of each point.
  read() {
    const {R, t, count} = this.data;
    this.positions = new Float32Array(zelmBytes(this.data.positions));
    this.drawn = new Float32Array(3 * count);
    const depths = new Float32Array(count);
    for (let i = 0; i < count; ++i) {
      const [x, y, z] = this.positions.subarray(3 * i, 3 * i + 3);
      const to = [0, 3, 6].map((row, k) => R[row] * x + R[row + 1] * y + R[row + 2] * z + t[k]);
      this.drawn.set([to[0], -to[1], -to[2]], 3 * i);
      depths[i] = to[2];
    }
    this.values = [{name: "depth", unit: this.data.units, range: this.data.depthRange, gray: false, numbers: depths}];
    for (const value of this.data.values) {
      const steps = new Uint16Array(zelmBytes(value.bytes));
      const numbers = Float32Array.from(steps, step => step === 65535 ? NaN
        : value.least + (value.most - value.least) * step / 65534);
      this.values.push(Object.assign({}, value, {numbers}));
    }
  }

  addPoints() {
    this.colours = new Uint8Array(3 * this.data.count);
    const geometry = new THREE.BufferGeometry();
    geometry.setAttribute("position", new THREE.BufferAttribute(this.drawn, 3));
    geometry.setAttribute("color", new THREE.BufferAttribute(this.colours, 3, true));
    this.material = new THREE.PointsMaterial({size: 3, sizeAttenuation: false,
                                              vertexColors: THREE.VertexColors || true});
    this.points = new THREE.Points(geometry, this.material);
    this.viewer.scene.add(this.points);
  }

  fillPanel() {
    const list = this.panel.querySelector(".colour-by");
    this.values.forEach(value => list.add(new Option(value.name)));
    list.addEventListener("change", () => this.colour(list.selectedIndex));
    this.panel.querySelector(".size").addEventListener("input", event => {
      this.material.size = Number(event.target.value);
      this.viewer.draw();
    });
    this.panel.hidden = false;
    this.colour(0);
  }

  colourOf(value, number) {
    if (!Number.isFinite(number)) {
      return [0.45, 0.45, 0.45];
    }
    const part = Math.min(1, Math.max(0, (number - value.range.from) / (value.range.to - value.range.from)));
    if (value.gray) {
      return [part, part, part];
    }
    const place = part * (this.data.colours.length - 1);
    const i = Math.min(Math.floor(place), this.data.colours.length - 2);
    return this.data.colours[i].map((from, k) => from + (place - i) * (this.data.colours[i + 1][k] - from));
  }

  colour(index) {
    const value = this.values[index];
    for (let i = 0; i < this.data.count; ++i) {
      const colour = this.colourOf(value, value.numbers[i]);
      for (let k = 0; k < 3; ++k) {
        this.colours[3 * i + k] = 255 * colour[k];
      }
    }
    this.points.geometry.attributes.color.needsUpdate = true;
    this.legend(value);
    this.viewer.draw();
  }

  legend(value) {
    const {from, to, below, above} = value.range;
    const unit = value.unit ? " " + value.unit : "";
    const low = (below ? "◀ " : "") + zelmNumber(from, 4) + unit;
    const high = zelmNumber(to, 4) + unit + (above ? " ▶" : "");
    const stops = [];
    for (let i = 0; i <= 20; ++i) {
      const colour = this.colourOf(value, from + (to - from) * i / 20).map(part => Math.round(255 * part));
      stops.push("rgb(" + colour.join(",") + ") " + 5 * i + "%");
    }
    this.panel.querySelector(".low").textContent = low;
    this.panel.querySelector(".high").textContent = high;
    this.panel.querySelector(".bar").style.background = "linear-gradient(to right," + stops.join(",") + ")";
    this.panel.querySelector(".legend").setAttribute("aria-label", value.name + " from " + low + " to " + high +
      (below || above ? "; arrows: there are values beyond" : ""));
  }

  // The box of most points: a few far off would make all others small.
  bulk() {
    const box = new THREE.Box3();
    const step = Math.max(1, Math.floor(this.data.count / 20000));
    for (let axis = 0; axis < 3; ++axis) {
      const values = [];
      for (let i = 0; i < this.data.count; i += step) {
        values.push(this.drawn[3 * i + axis]);
      }
      values.sort((a, b) => a - b);
      const skipped = Math.floor(0.02 * values.length);
      box.min.setComponent(axis, values[skipped]);
      box.max.setComponent(axis, values[values.length - 1 - skipped]);
    }
    return box;
  }

  addMeasuring(figure) {
    this.words = document.createElement("output");
    this.picked = [];
    this.tags = [];
    this.line = new THREE.Line(new THREE.BufferGeometry(), new THREE.LineBasicMaterial({
      color: 0xffffff, depthTest: false, transparent: true}));
    this.line.visible = false;
    this.viewer.scene.add(this.line);
    zelmOnClick(this.viewer.canvas, event => this.pick(this.viewer.place(event)));
    this.viewer.canvas.addEventListener("keydown", event => {
      if (event.key === "Enter") {
        event.preventDefault();
        this.pick(new THREE.Vector2(0, 0));
      } else if (event.key === "Escape") {
        this.clear();
      }
    });
  }

  // The point under a place of the canvas: the nearest to the eye of those close by, else the closest one.
  pointAt(place) {
    const width = this.viewer.canvas.clientWidth / 2;
    const height = this.viewer.canvas.clientHeight / 2;
    const matrix = new THREE.Matrix4().multiplyMatrices(this.viewer.camera.projectionMatrix,
                                                        this.viewer.camera.matrixWorldInverse).elements;
    const near = Math.max(4, this.material.size);
    let front = -1, frontDepth = Infinity, closest = -1, least = 24;
    for (let i = 0; i < this.data.count; ++i) {
      const x = this.drawn[3 * i], y = this.drawn[3 * i + 1], z = this.drawn[3 * i + 2];
      const w = matrix[3] * x + matrix[7] * y + matrix[11] * z + matrix[15];
      if (!(w > 0)) {
        continue;
      }
      const dx = ((matrix[0] * x + matrix[4] * y + matrix[8] * z + matrix[12]) / w - place.x) * width;
      const dy = ((matrix[1] * x + matrix[5] * y + matrix[9] * z + matrix[13]) / w - place.y) * height;
      const distance = Math.hypot(dx, dy);
      if (distance < near && w < frontDepth) {
        front = i;
        frontDepth = w;
      }
      if (distance < least) {
        closest = i;
        least = distance;
      }
    }
    return front >= 0 ? front : closest;
  }

  pick(place) {
    const index = this.pointAt(place);
    if (index < 0) {
      this.words.textContent = "No point there.";
      return;
    }
    if (this.picked.length === 2) {
      this.clear();
    }
    this.picked.push(index);
    const point = new THREE.Vector3().fromArray(this.drawn, 3 * index);
    this.tags.push(this.viewer.tag(point, this.picked.length === 1 ? "A" : "B", "paper"));
    this.tags[this.tags.length - 1].element.classList.add("picked");
    if (this.picked.length === 2) {
      this.line.geometry.setFromPoints(this.picked.map(i => new THREE.Vector3().fromArray(this.drawn, 3 * i)));
      this.line.geometry.computeBoundingSphere();
      this.line.visible = true;
    }
    this.tell();
    this.viewer.draw();
  }

  clear() {
    this.tags.forEach(tag => tag.element.remove());
    this.viewer.tags = this.viewer.tags.filter(tag => !this.tags.includes(tag));
    this.tags = [];
    this.picked = [];
    this.line.visible = false;
    this.words.textContent = "";
    this.viewer.draw();
  }

  position(index) { return [...this.positions.subarray(3 * index, 3 * index + 3)]; }

  tell() {
    const units = this.data.units;
    const texts = this.picked.map((index, i) => {
      const numbers = this.values.map(value => value.name + " " + zelmNumber(value.numbers[index], 5) +
                                      (value.unit ? " " + value.unit : ""));
      return "AB"[i] + ": (" + this.position(index).map(v => zelmNumber(v, 6)).join(", ") + ") " + units + ", " +
             numbers.join(", ");
    });
    if (this.picked.length === 2) {
      const [a, b] = this.picked.map(index => this.position(index));
      const d = b.map((v, k) => v - a[k]);
      texts.unshift("A to B: " + zelmNumber(Math.hypot(...d), 6) + " " + units + " (" +
                    ["X", "Y", "Z"].map((axis, k) => axis + " " + zelmNumber(d[k], 5)).join(", ") + ")");
    }
    this.words.textContent = texts.join(". ") + ".";
  }
}

document.querySelectorAll("figure[data-scene=cloud]").forEach(figure => {
  zelmIn3d(figure, () => new ZelmCloud(figure, JSON.parse(document.getElementById("cloud-data").textContent)));
});
