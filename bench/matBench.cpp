// Dense matrices beside Eigen, built for AVX2 and FMA, and OpenCV, on the same matrices, which change from call to
// call. Results are compared with the peer's before they are timed.
#include <Eigen/Dense>
#include <cstdint>
#include <memory>
#include <opencv2/core.hpp>
#include <opencv2/core/utility.hpp>
#include <string>
#include <vector>

#include "pairedBench.h"
#include "random.h"
#include "zelmLib.h"

namespace {

using zelmbench::demand;
using zelmbench::PairedBench;
using zelmtest::Random;

constexpr std::size_t kMatrices = 16;
constexpr double kAlike = 1e-9;

template <int Size>
using Square = Eigen::Matrix<double, Size, Size, Eigen::RowMajor>;
template <int Size>
using Squares = std::vector<Square<Size>, Eigen::aligned_allocator<Square<Size>>>;

template <int Size>
Squares<Size> matrices(int n, bool symmetric) {
    Random random(41);
    Squares<Size> list;
    for (std::size_t k = 0; k < kMatrices; ++k) {
        Square<Size> A(n, n);
        for (int i = 0; i < n; ++i) {
            for (int j = 0; j < n; ++j) {
                A(i, j) = symmetric && j < i ? A(j, i) : random.normal();
            }
        }
        list.push_back(A);
    }
    return list;
}

void addProduct(PairedBench& bench, int n) {
    const auto list = matrices<Eigen::Dynamic>(n, false);
    const auto C = std::make_shared<Square<Eigen::Dynamic>>(n, n);
    const auto D = std::make_shared<Square<Eigen::Dynamic>>(n, n);
    const auto ours = [=](std::size_t round) {
        zelmMatMul(n, n, list[round % kMatrices].data(), n, n, list[(round + 1) % kMatrices].data(), C->data());
    };
    const auto peer = [=](std::size_t round) {
        D->noalias() = list[round % kMatrices] * list[(round + 1) % kMatrices];
    };
    ours(0);
    peer(0);
    demand((*C - *D).norm() < kAlike * n, "product");
    bench.add("product " + std::to_string(n) + " x " + std::to_string(n), ours, peer);
}

void addInverse(PairedBench& bench, int n) {
    const auto list = matrices<Eigen::Dynamic>(n, false);
    const auto C = std::make_shared<Square<Eigen::Dynamic>>(n, n);
    const auto D = std::make_shared<Square<Eigen::Dynamic>>(n, n);
    const auto ours = [=](std::size_t round) { zelmMatInvert(n, list[round % kMatrices].data(), C->data()); };
    const auto peer = [=](std::size_t round) { *D = list[round % kMatrices].inverse(); };
    ours(0);
    peer(0);
    demand((*C - *D).norm() < kAlike * n * D->norm(), "inverse");
    bench.add("inverse " + std::to_string(n) + " x " + std::to_string(n), ours, peer);
}

template <int Size>
void addEigenvectors(PairedBench& bench) {
    const auto list = matrices<Size>(Size, true);
    const auto ours = [=](std::size_t round) {
        Square<Size> V;
        Eigen::Matrix<double, Size, 1> values;
        zelmMatJacobiEigen(Size, list[round % kMatrices].data(), values.data(), V.data());
        benchmark::DoNotOptimize(V);
        return values;
    };
    const auto eigen = [=](std::size_t round) {
        const Eigen::SelfAdjointEigenSolver<Square<Size>> solver(list[round % kMatrices]);
        benchmark::DoNotOptimize(solver.eigenvectors());
        return solver.eigenvalues();
    };
    const auto openCv = [=](std::size_t round) {
        const cv::Mat A(Size, Size, CV_64F, const_cast<double*>(list[round % kMatrices].data()));
        cv::Mat values;
        cv::Mat vectors;
        cv::eigen(A, values, vectors);
        benchmark::DoNotOptimize(vectors.data);
    };
    for (std::size_t k = 0; k < kMatrices; ++k) {
        demand((ours(k) - eigen(k).reverse()).norm() < kAlike, "eigenvalues");
    }
    const std::string size = std::to_string(Size) + " x " + std::to_string(Size);
    bench.add("Jacobi " + size + ", Eigen", ours, eigen);
    bench.add("Jacobi " + size + ", OpenCV", ours, openCv);
}

void addSvd3(PairedBench& bench) {
    const auto list = matrices<3>(3, false);
    const auto ours = [=](std::size_t round) {
        Square<3> U;
        Square<3> V;
        Eigen::Vector3d w;
        zelmMatSVD(3, 3, list[round % kMatrices].data(), U.data(), w.data(), V.data());
        benchmark::DoNotOptimize(U);
        benchmark::DoNotOptimize(V);
        return w;
    };
    const auto peer = [=](std::size_t round) {
        const Eigen::JacobiSVD<Square<3>> svd(list[round % kMatrices], Eigen::ComputeFullU | Eigen::ComputeFullV);
        benchmark::DoNotOptimize(svd.matrixU());
        benchmark::DoNotOptimize(svd.matrixV());
        return svd.singularValues();
    };
    for (std::size_t k = 0; k < kMatrices; ++k) {
        demand((ours(k) - peer(k)).norm() < kAlike, "singular values");
    }
    bench.add("SVD 3 x 3", ours, peer);
}

}  // namespace

int main(int argc, char** argv) {
    cv::setNumThreads(1);
    PairedBench bench(argc, argv);
    for (const int n : {100, 300}) {
        addProduct(bench, n);
    }
    addInverse(bench, 100);
    addEigenvectors<9>(bench);
    addEigenvectors<6>(bench);
    addSvd3(bench);
    bench.run("Eigen " + std::to_string(EIGEN_WORLD_VERSION) + "." + std::to_string(EIGEN_MAJOR_VERSION) + "." +
              std::to_string(EIGEN_MINOR_VERSION) + " with AVX2 and FMA, OpenCV " + cv::getVersionString());
    return 0;
}
